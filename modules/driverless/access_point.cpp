#include "access_point.h"

#include "diagnostics.h"
#include "host_route.h"
#include "host_wifi.h"
#include "printer_network.h"
#include "results.h"

namespace Driverless {

namespace {

constexpr std::uint16_t kIppPort = 631;

std::chrono::milliseconds Until(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

// The printer that would be at that address, as far as it is known without asking it.
struct Candidate {
    ServiceId id;
    Service service;
};

Candidate CandidateAt(const std::string& network, const std::string& address) {
    return {{network, {}, ServiceKind::Ipp, -1}, {address, address, kIppPort, {}}};
}

AccessPointSearch Nothing(int result, const std::string& detail) {
    ReportDetail(detail);
    return {result, std::nullopt};
}

}  // namespace

AccessPointSearch FindAccessPoint(Clock::time_point deadline) {
    const auto current = CurrentNetwork(Until(deadline));
    if (!current) {
        return Nothing(kNoWifiAnswer, "the host's Wi-Fi service does not answer");
    }
    if (!MayBePrintersOwn(current->name)) {
        return {kNotPrintersNetwork, std::nullopt};
    }
    const std::string address = GatewayOf(current->interface);
    if (address.empty()) {
        return Nothing(kNotReached, current->name + " has given the host no address yet");
    }
    const Candidate candidate = CandidateAt(current->name, address);
    IppQuestion question;
    question.kind = IppQuestion::Kind::AttributesWithWifi;
    const IppAnswer answer = AskInTime(Describe(candidate.id, candidate.service, {}),
                                       Until(deadline), std::move(question));
    if (answer.kind != IppAnswer::Kind::Granted || !answer.attributes.wifiState) {
        return Nothing(kNotReached, "no printer whose Wi-Fi can be configured answers at " +
                                        address + ", in " + current->name + ": " + answer.problem);
    }
    return {kOk,
            AccessPoint{current->name, Describe(candidate.id, candidate.service, answer.attributes),
                        answer.attributes}};
}

std::string AddressOnPrintersNetwork(Clock::time_point deadline) {
    const auto current = CurrentNetwork(Until(deadline));
    return current && MayBePrintersOwn(current->name) ? GatewayOf(current->interface)
                                                      : std::string();
}

}  // namespace Driverless
