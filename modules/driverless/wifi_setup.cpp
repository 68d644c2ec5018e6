#include "wifi_setup.h"

#include <cstdlib>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "access_point.h"
#include "diagnostics.h"
#include "host_wifi.h"
#include "ipp_query.h"
#include "join_watch.h"
#include "results.h"
#include "text.h"
#include "wifi_settings.h"

namespace Driverless {

namespace {

constexpr std::chrono::milliseconds kLookAgain{250};
constexpr std::chrono::milliseconds kStatePatience{1000};
// Small printers compute for a while before they speak TLS.
constexpr std::chrono::milliseconds kStatePatienceWithTls{2000};
// A fresh look at what is in range takes its time.
constexpr std::chrono::milliseconds kScanPatience{12000};

constexpr long kDefaultLimit = 30;
constexpr long kLongestLimit = 600;

// How long a printer has to join, from the environment variable DRIVERLESS_JOIN_SECONDS.
std::chrono::seconds JoinLimit() {
    const char* const text = std::getenv("DRIVERLESS_JOIN_SECONDS");
    char* end = nullptr;
    const long seconds = text == nullptr ? 0 : std::strtol(text, &end, 10);
    const bool valid = text != nullptr && *end == '\0' && seconds >= 1 && seconds <= kLongestLimit;
    return std::chrono::seconds(valid ? seconds : kDefaultLimit);
}

bool SeesNetworks() {
    using Networks = std::vector<NetworkInRange>;
    const auto answer = std::make_shared<std::promise<std::future<Networks>>>();
    auto seen = answer->get_future();
    FindNetworks([answer](std::future<Networks> found) { answer->set_value(std::move(found)); });
    return seen.wait_for(kScanPatience) == std::future_status::ready && !seen.get().get().empty();
}

// Whether the host is known to have left the network. One whose Wi-Fi is off or has ended is joined
// to nothing, too, but sees nothing either.
bool HasLeft(const std::string& network) {
    const auto current = CurrentNetwork(kStatePatience);
    return current && current->name != network && (!current->name.empty() || SeesNetworks());
}

// The pass phrase goes encrypted wherever the printer can take it so.
Printer WithTlsIfSpoken(const AccessPoint& accessPoint) {
    Printer printer = accessPoint.printer;
    if (accessPoint.attributes.speaksTls) {
        printer.kind = ServiceKind::Ipps;
    }
    return printer;
}

// One that closes its network at once, before its answer is through, took the settings too.
bool IsTaken(const IppAnswer& answer, const std::string& network) {
    return answer.kind == IppAnswer::Kind::Granted ||
           (answer.kind == IppAnswer::Kind::NoAnswer && answer.sent && HasLeft(network));
}

// The result of a refusal; nothing when the printer took the settings.
std::optional<int> Send(const AccessPoint& accessPoint, const WifiSettings& settings) {
    const IppAnswer answer = AskInTime(WithTlsIfSpoken(accessPoint), kSettingPatience,
                                       {IppQuestion::Kind::Set, settings});
    if (IsTaken(answer, accessPoint.network)) {
        return std::nullopt;
    }
    ReportProblem(
        "the printer at " + accessPoint.printer.address + " does not take the network: " +
        (answer.problem.empty() ? "no answer" : settings.passPhrase.MaskedIn(answer.problem)));
    switch (answer.kind) {
        case IppAnswer::Kind::Denied:
            return kNotAllowed;
        case IppAnswer::Kind::NoPrinter:
            return kRefused;
        default:
            return kNotReached;
    }
}

std::optional<int> LookOnce(const AccessPoint& accessPoint, JoinWatch& watch) {
    const bool tls = accessPoint.printer.kind == ServiceKind::Ipps;
    const IppAnswer answer =
        AskInTime(accessPoint.printer, tls ? kStatePatienceWithTls : kStatePatience,
                  {IppQuestion::Kind::AttributesWithWifi, {}});
    if (answer.kind == IppAnswer::Kind::Granted) {
        return watch.Answered(answer.attributes, Clock::now());
    }
    return HasLeft(accessPoint.network) ? watch.Gone(Clock::now()) : watch.Silent(Clock::now());
}

int Follow(const AccessPoint& accessPoint, JoinWatch watch) {
    while (true) {
        std::this_thread::sleep_for(kLookAgain);
        if (const auto result = LookOnce(accessPoint, watch)) {
            return *result;
        }
    }
}

}  // namespace

int SetUpWifi(const VendorSdk::WifiConfigInfo& record) {
    const WifiSettings settings{FieldText(record.ssid), PassPhrase(FieldView(record.pwd))};
    const std::string problem = ProblemWith(settings);
    if (!problem.empty()) {
        ReportProblem("nothing was sent to the printer: " + problem);
        return kNotValid;
    }
    const auto found = FindAccessPoint(Clock::now() + kAnswerPatience).found;
    if (!found) {
        ReportProblem("the host is in no network of a printer that can be set up");
        return kNotReached;
    }
    if (const auto refusal = Send(*found, settings)) {
        return *refusal;
    }
    ReportDetail("the printer at " + found->printer.address + " was given the network " +
                 settings.name);
    const int result = Follow(
        *found, JoinWatch(settings.name, *found->attributes.wifiState, Clock::now(), JoinLimit()));
    ReportDetail("it ended with " + std::to_string(result));
    return result;
}

}  // namespace Driverless
