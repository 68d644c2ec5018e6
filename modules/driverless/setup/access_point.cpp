// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/access_point.h"

#include <algorithm>
#include <mutex>
#include <thread>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/setup/first_questions.h"
#include "modules/driverless/setup/host_route.h"
#include "modules/driverless/setup/host_wifi.h"
#include "modules/driverless/setup/printer_network.h"

namespace Driverless {

namespace {

constexpr std::uint16_t kIppPort = 631;

// How long to wait for plain IPP alone. Some printers that speak only TLS never answer plain IPP.
constexpr std::chrono::milliseconds kPatienceForPlainIpp{500};
// How long plain IPP is preferred: an earlier answer over TLS is used only after this.
constexpr std::chrono::milliseconds kPreferenceForPlainIpp{1200};
// How often to check for an answer while waiting for both.
constexpr std::chrono::milliseconds kLookAgain{20};
// The pause between two queries.
constexpr std::chrono::milliseconds kAskAgain{250};

std::chrono::milliseconds Until(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

// The printer assumed at an address, as far as known without a query.
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

// The answer and the printer that sent it; or the reason for no answer.
struct Reply {
    Candidate candidate;
    IppAnswer answer;
};

bool IsGranted(const IppAsking& asking) {
    return asking.IsOver(Clock::now()) && asking.Answer().kind == IppAnswer::Kind::Granted;
}

// Returns when it is clear which answer to use, or when plain IPP has ended without one.
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

// Queries over plain IPP and, if no answer comes soon, over TLS too.
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
    Reply reply{plain, overPlain.Answer()};
    reply.answer.refused = reply.answer.refused && overTls.Answer().refused;
    return reply;
}

AccessPointSearch Nothing(int result, const std::string& detail) {
    ReportDetail(detail);
    return {result, std::nullopt};
}

// How long the first query in a network is repeated, from the environment variable
// DRIVERLESS_FIRST_SECONDS.
std::chrono::seconds FirstPatience() {
    return ReadSeconds("DRIVERLESS_FIRST_SECONDS", 10, 60);
}

// FirstQuestions for all threads. Never destroyed: threads run until the process is gone.
class Questions {
public:
    AskedAgain Begin(const std::string& network) {
        const std::lock_guard lock(mutex);
        return questions.Begin(network, FirstPatience(), Clock::now());
    }

    void Answered(const std::string& network) {
        const std::lock_guard lock(mutex);
        questions.Answered(network);
    }

private:
    std::mutex mutex;
    FirstQuestions questions{kAnswerPatience};
};

Questions& TheQuestions() {
    static Questions& questions = *new Questions;
    return questions;
}

// Queries the network's gateway once, and reports the outcome to `asking`.
AccessPointSearch SearchIn(const HostNetwork& network, Clock::time_point deadline,
                           AskedAgain& asking) {
    const std::string address = GatewayOf(network.interface);
    if (address.empty()) {
        return Nothing(kNotReached, network.name + " has given the host no address yet");
    }
    const auto [candidate, answer] = AskAt(network.name, address, deadline);
    if (answer.kind != IppAnswer::Kind::NoAnswer) {
        asking.Answered();
    } else if (answer.refused) {
        asking.Refused();
    }
    if (answer.kind != IppAnswer::Kind::Granted || !answer.attributes.wifiState) {
        return Nothing(kNotReached, "no printer whose Wi-Fi can be configured answers at " +
                                        address + ", in " + network.name + ": " + answer.problem);
    }
    TheQuestions().Answered(network.name);
    return {kOk, AccessPoint{network.name, DescribeCandidate(candidate, answer.attributes),
                             answer.attributes}};
}

}  // namespace

AccessPointSearch FindAccessPoint() {
    std::optional<AskedAgain> asking;
    AccessPointSearch search{kNotReached, std::nullopt};
    while (true) {
        const auto current = CurrentNetwork(kAnswerPatience);
        if (!current) {
            return Nothing(kNoWifiAnswer, "the host's Wi-Fi service does not answer");
        }
        if (!asking) {
            asking = TheQuestions().Begin(current->name);
        }
        if (!MayBePrintersOwn(current->name)) {
            return {kNotPrintersNetwork, std::nullopt};
        }
        const auto until = asking->Next(Clock::now());
        if (!until) {
            return search;
        }
        search = SearchIn(*current, *until, *asking);
        if (asking->IsOver(Clock::now() + kAskAgain)) {
            return search;
        }
        std::this_thread::sleep_for(kAskAgain);
    }
}

std::optional<std::string> AddressOnPrintersNetwork(Clock::time_point deadline) {
    const auto current = CurrentNetwork(Until(deadline));
    if (!current) {
        return std::nullopt;
    }
    return MayBePrintersOwn(current->name) ? GatewayOf(current->interface) : std::string();
}

}  // namespace Driverless
