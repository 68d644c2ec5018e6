#include "access_point.h"

#include <algorithm>

#include "diagnostics.h"
#include "host_route.h"
#include "host_wifi.h"
#include "printer_network.h"
#include "results.h"

namespace Driverless {

namespace {

constexpr std::uint16_t kIppPort = 631;

// How long plain IPP is waited for alone. Of a printer that speaks TLS only some wait for it in
// silence.
constexpr std::chrono::milliseconds kPatienceForPlainIpp{500};
// How long it has been asked for before an answer over TLS is taken that came earlier.
constexpr std::chrono::milliseconds kPreferenceForPlainIpp{1200};
// While both are waited for.
constexpr std::chrono::milliseconds kLookAgain{20};

std::chrono::milliseconds Until(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

// The printer that would be at that address, as far as it is known without asking it.
struct Candidate {
    ServiceId id;
    Service service;
};

Candidate CandidateAt(const std::string& network, const std::string& address, ServiceKind kind) {
    return {{network, {}, kind, -1}, {address, address, kIppPort, {}}};
}

Printer DescribeCandidate(const Candidate& candidate,
                          const std::optional<PrinterAttributes>& attributes) {
    return Describe(candidate.id, candidate.service, attributes);
}

// The one who answered, and what; or the reason why nobody did.
struct Reply {
    Candidate candidate;
    IppAnswer answer;
};

bool IsGranted(const IppAsking& asking) {
    return asking.IsOver(Clock::now()) && asking.Answer().kind == IppAnswer::Kind::Granted;
}

// Comes back when it is clear which of the two to take, or plain IPP brings nothing any more.
void AwaitEither(const IppAsking& overPlain, const IppAsking& overTls, Clock::time_point preferred,
                 Clock::time_point deadline) {
    auto now = Clock::now();
    while (now < deadline && !overPlain.IsOver(std::min(deadline, now + kLookAgain))) {
        now = Clock::now();
        if (now >= preferred && IsGranted(overTls)) {
            return;
        }
    }
}

// Asks over plain IPP and, where that brings nothing soon, over TLS too.
Reply AskAt(const std::string& network, const std::string& address, Clock::time_point deadline) {
    const auto start = Clock::now();
    const IppQuestion question{IppQuestion::Kind::AttributesWithWifi, {}};
    const Candidate plain = CandidateAt(network, address, ServiceKind::Ipp);
    const IppAsking overPlain(DescribeCandidate(plain, {}), deadline, question);
    overPlain.IsOver(std::min(deadline, start + kPatienceForPlainIpp));
    if (IsGranted(overPlain)) {
        return {plain, overPlain.Answer()};
    }
    const Candidate tls = CandidateAt(network, address, ServiceKind::Ipps);
    const IppAsking overTls(DescribeCandidate(tls, {}), deadline, question);
    AwaitEither(overPlain, overTls, start + kPreferenceForPlainIpp, deadline);
    if (!IsGranted(overPlain) && overTls.Answer().kind == IppAnswer::Kind::Granted) {
        return {tls, overTls.Answer()};
    }
    return {plain, overPlain.Answer()};
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
    const auto [candidate, answer] = AskAt(current->name, address, deadline);
    if (answer.kind != IppAnswer::Kind::Granted || !answer.attributes.wifiState) {
        return Nothing(kNotReached, "no printer whose Wi-Fi can be configured answers at " +
                                        address + ", in " + current->name + ": " + answer.problem);
    }
    return {kOk, AccessPoint{current->name, DescribeCandidate(candidate, answer.attributes),
                             answer.attributes}};
}

std::optional<std::string> AddressOnPrintersNetwork(Clock::time_point deadline) {
    const auto current = CurrentNetwork(Until(deadline));
    if (!current) {
        return std::nullopt;
    }
    return MayBePrintersOwn(current->name) ? GatewayOf(current->interface) : std::string();
}

}  // namespace Driverless
