// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/wifi_setup.h"

#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/common/text.h"
#include "modules/driverless/discovery/connect_state.h"
#include "modules/driverless/discovery/known_printers.h"
#include "modules/driverless/ipp/ipp_query.h"
#include "modules/driverless/printer/wifi_settings.h"
#include "modules/driverless/setup/access_point.h"
#include "modules/driverless/setup/host_wifi.h"
#include "modules/driverless/setup/join_watch.h"
#include "modules/driverless/setup/local_network.h"
#include "modules/driverless/usb/usb_bridge.h"

namespace Driverless {

namespace {

constexpr std::chrono::milliseconds kLookAgain{250};
constexpr std::chrono::milliseconds kStatePatience{1000};
// Small printers compute for a while before they speak TLS.
constexpr std::chrono::milliseconds kStatePatienceWithTls{2000};
// A fresh look at what is in range takes its time.
constexpr std::chrono::milliseconds kScanPatience{12000};
constexpr std::chrono::seconds kVisitPatience{10};

// How long a printer has to join, from the environment variable DRIVERLESS_JOIN_SECONDS.
std::chrono::seconds JoinLimit() {
    return ReadSeconds("DRIVERLESS_JOIN_SECONDS", 30, 600);
}

// A printer that takes Wi-Fi settings, and the way to it.
struct Recipient {
    Printer printer;
    WifiState state;   // before it is given anything
    Printer onSecret;  // how it is asked to take a pass phrase
    // Its own network, through which it is reached; empty for one on USB.
    std::string network;
};

// The pass phrase goes encrypted wherever the printer can take it so.
Recipient InItsNetwork(const AccessPoint& accessPoint) {
    Recipient recipient{accessPoint.printer, *accessPoint.attributes.wifiState, accessPoint.printer,
                        accessPoint.network};
    if (accessPoint.attributes.speaksTls) {
        recipient.onSecret.kind = ServiceKind::Ipps;
    }
    return recipient;
}

bool IsOnUsb(const Recipient& recipient) {
    return recipient.network.empty();
}

// A bridge takes what it passes on as it is: it stays on this host and the cable.
Recipient OnUsb(const BridgedPrinter& bridged) {
    return {bridged.printer, *bridged.attributes.wifiState, bridged.printer, {}};
}

// Where the host is, seen from the printer's own network.
struct Whereabouts {
    bool hasLeft = false;    // it is known to be out of that network
    bool elsewhere = false;  // and on another one
    bool inRange = false;    // and receives that network
};

// A host whose Wi-Fi is off or has ended is joined to nothing, too, but sees nothing either.
Whereabouts WhereaboutsOf(const Recipient& recipient) {
    if (IsOnUsb(recipient)) {
        return {};
    }
    const auto current = CurrentNetwork(kStatePatience);
    if (!current || current->name == recipient.network) {
        return {};
    }
    const auto networks = NetworksInRange(kScanPatience).value_or(std::vector<NetworkInRange>());
    const bool elsewhere = !current->name.empty();
    const bool inRange =
        std::any_of(networks.begin(), networks.end(),
                    [&](const NetworkInRange& one) { return one.name == recipient.network; });
    return {elsewhere || !networks.empty(), elsewhere, inRange};
}

// One that closes its network at once, before its answer is through, took the settings too.
bool IsTaken(const IppAnswer& answer, const Recipient& recipient) {
    return answer.kind == IppAnswer::Kind::Granted ||
           (answer.kind == IppAnswer::Kind::NoAnswer && answer.sent &&
            WhereaboutsOf(recipient).hasLeft);
}

// On the network it may be known by its UUID only. It is where its bridge has it, and where the
// record says; another one that was there before is not any more.
void RememberAs(const VendorSdk::DeviceInfo& record, Printer printer) {
    printer.serialNumber = FieldText(record.deviceSN);
    Printer onUsb = printer;
    onUsb.address = FieldText(record.extra2);
    onUsb.port = 0;
    KnownPrinters().Remember(onUsb);
    KnownPrinters().Remember(printer);
}

std::string PlaceOf(const Printer& printer) {
    return printer.address + ":" + std::to_string(printer.port);
}

// The result of a refusal; nothing when the printer took the settings.
std::optional<int> Send(const Recipient& recipient, const WifiSettings& settings) {
    const IppAnswer answer =
        AskInTime(recipient.onSecret, kSettingPatience, {IppQuestion::Kind::Set, settings});
    if (IsTaken(answer, recipient)) {
        return std::nullopt;
    }
    ReportProblem("the printer at " + PlaceOf(recipient.printer) + " does not take the network: " +
                  (answer.problem.empty() ? "no answer" : answer.problem));
    switch (answer.kind) {
        case IppAnswer::Kind::Denied:
            return kNotAllowed;
        case IppAnswer::Kind::NoPrinter:
            return kRefused;
        default:
            return kNotReached;
    }
}

// Follows a printer that has taken its settings to the outcome. A host that was thrown out of the
// printer's network goes back to ask, and in the end to where it was before.
class PrinterFollower {
public:
    PrinterFollower(const Recipient& followed, JoinWatch joinWatch)
        : recipient(followed), watch(std::move(joinWatch)) {}
    ~PrinterFollower() {
        if (visited) {
            EndVisit();
        }
    }

    int AwaitOutcome() {
        while (true) {
            std::this_thread::sleep_for(kLookAgain);
            if (const auto result = LookOnce()) {
                return *result;
            }
        }
    }

    PrinterFollower(const PrinterFollower&) = delete;
    PrinterFollower& operator=(const PrinterFollower&) = delete;

private:
    std::optional<int> LookOnce() {
        const bool tls = recipient.printer.kind == ServiceKind::Ipps;
        const IppAnswer answer =
            AskInTime(recipient.printer, tls ? kStatePatienceWithTls : kStatePatience,
                      {IppQuestion::Kind::AttributesWithWifi, {}});
        // Where the host is elsewhere, another printer may have that address.
        if (answer.kind == IppAnswer::Kind::Granted && IsThePrinter(answer.attributes)) {
            return watch.Answered(answer.attributes, Clock::now());
        }
        const Whereabouts host = WhereaboutsOf(recipient);
        return host.hasLeft ? FromOutside(host) : watch.Silent(Clock::now());
    }

    std::optional<int> FromOutside(const Whereabouts& host) {
        if (!arrival) {
            arrival.emplace(recipient.printer);
        }
        if (arrival->HasCome()) {
            return JoinWatch::Announced();
        }
        const auto result = watch.Gone(Clock::now());
        if (!result && host.inRange && watch.ShouldGoBack(host.elsewhere, Clock::now())) {
            GoBack();
        }
        return result;
    }

    bool IsThePrinter(const PrinterAttributes& attributes) const {
        return IsOnUsb(recipient) ? IsStillThere(recipient.printer, attributes)
                                  : IsSamePrinter(recipient.printer, attributes);
    }

    // What is announced in the printer's own network shows nothing.
    void GoBack() {
        arrival.reset();
        visited = true;
        ReportDetail("back to " + recipient.network + ", to ask the printer");
        Visit(recipient.network, kVisitPatience);
        watch.Visited(Clock::now());
    }

    const Recipient& recipient;
    JoinWatch watch;
    std::optional<Arrival> arrival;
    bool visited = false;
};

const char* Outcome(int result) {
    switch (result) {
        case kNotVisible:
            return " does not see the network ";
        case kCannotJoin:
            return " is not let in with that pass phrase by the network ";
        case kNotConfirmed:
            return " closed its own network and did not say whether it joined the network ";
        default:
            return " has not joined in time the network ";
    }
}

int Give(const Recipient& recipient, const WifiSettings& settings) {
    if (const auto refusal = Send(recipient, settings)) {
        return *refusal;
    }
    ReportDetail("the printer at " + PlaceOf(recipient.printer) + " was given the network " +
                 settings.name);
    const int result = PrinterFollower(recipient, JoinWatch(settings.name, recipient.state,
                                                            Clock::now(), JoinLimit()))
                           .AwaitOutcome();
    ReportDetail("it ended with " + std::to_string(result));
    // Over USB the result does not get as far as the user.
    if (result != kOk && IsOnUsb(recipient)) {
        ReportProblem(recipient.printer.makeAndModel + " on USB" + Outcome(result) + settings.name);
    }
    return result;
}

WifiSettings SettingsIn(const VendorSdk::WifiConfigInfo& record) {
    return {FieldText(record.ssid), Base::Secret(FieldView(record.pwd))};
}

bool AreValid(const WifiSettings& settings) {
    const std::string problem = ProblemWith(settings);
    if (!problem.empty()) {
        ReportProblem("nothing was sent to the printer: " + problem);
    }
    return problem.empty();
}

}  // namespace

int SetUpWifi(const VendorSdk::WifiConfigInfo& record) {
    const WifiSettings settings = SettingsIn(record);
    if (!AreValid(settings)) {
        return kNotValid;
    }
    const auto found = FindAccessPoint().found;
    if (!found) {
        ReportProblem("the host is in no network of a printer that can be set up");
        return kNotReached;
    }
    return Give(InItsNetwork(*found), settings);
}

int SetUpWifiOverUsb(const VendorSdk::DeviceInfo& device, const VendorSdk::WifiConfigInfo& record) {
    const WifiSettings settings = SettingsIn(record);
    if (!AreValid(settings)) {
        return kNotValid;
    }
    const BridgeSearch search = FindBridged(device, Clock::now() + kAnswerPatience);
    if (!search.found) {
        return search.result;
    }
    if (!search.found->attributes.wifiState) {
        ReportProblem("the printer at " + PlaceOf(search.found->printer) +
                      " has no Wi-Fi that can be configured");
        return kRefused;
    }
    RememberAs(device, search.found->printer);
    return Give(OnUsb(*search.found), settings);
}

}  // namespace Driverless
