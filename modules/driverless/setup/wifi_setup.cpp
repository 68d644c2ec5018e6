// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/wifi_setup.h"

#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/text/record_field.h"
#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
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
// Small printers need a while to compute before they answer over TLS.
constexpr std::chrono::milliseconds kStatePatienceWithTls{2000};
// A new scan takes some seconds.
constexpr std::chrono::milliseconds kScanPatience{12000};
constexpr std::chrono::seconds kVisitPatience{10};

// The time that a printer has to join, from the environment variable DRIVERLESS_JOIN_SECONDS.
std::chrono::seconds JoinLimit() {
    return ReadSeconds("DRIVERLESS_JOIN_SECONDS", 30, 600);
}

// A printer that accepts Wi-Fi settings, and how to reach it.
struct Recipient {
    Printer printer;
    WifiState state;   // before the settings are sent
    Printer onSecret;  // where the pass phrase is sent
    // The printer's own network, through which it is reached; empty for a printer on USB.
    std::string network;
};

// The pass phrase is sent encrypted if the printer supports it.
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

// A bridge gets the pass phrase unencrypted: it stays on this host and the cable.
Recipient OnUsb(const BridgedPrinter& bridged) {
    return {bridged.printer, *bridged.attributes.wifiState, bridged.printer, {}};
}

// The host's position relative to the printer's own network.
struct Whereabouts {
    bool hasLeft = false;    // the host has certainly left that network
    bool elsewhere = false;  // and is on another network
    bool inRange = false;    // and sees that network
};

// A host whose Wi-Fi is off is not joined either, but it sees no networks.
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

// A printer that closes its network before its answer has arrived has accepted the settings, too.
bool IsTaken(const IppAnswer& answer, const Recipient& recipient) {
    return answer.kind == IppAnswer::Kind::Granted ||
           (answer.kind == IppAnswer::Kind::NoAnswer && answer.sent &&
            WhereaboutsOf(recipient).hasLeft);
}

// Remembers the printer under the record's serial number, at both its bridge address and its USB
// place, replacing any other printer there. On the network it may be known only by its UUID.
void RememberAs(const VendorSdk::DeviceInfo& record, Printer printer) {
    printer.serialNumber = Base::FieldText(record.deviceSN);
    Printer onUsb = printer;
    onUsb.address = Base::FieldText(record.extra2);
    onUsb.port = 0;
    KnownPrinters().Remember(onUsb);
    KnownPrinters().Remember(printer);
}

std::string PlaceOf(const Printer& printer) {
    return printer.address + ":" + std::to_string(printer.port);
}

// The result of a refusal; nothing when the printer has accepted the settings.
std::optional<int> Send(const Recipient& recipient, const WifiSettings& settings) {
    const IppAnswer answer =
        AskInTime(recipient.onSecret, kSettingPatience, {IppQuestion::Kind::Set, settings});
    if (IsTaken(answer, recipient)) {
        return std::nullopt;
    }
    ReportProblem("the printer at " + PlaceOf(recipient.printer) + " did not accept the network: " +
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

// Waits for the outcome of a printer that has accepted its settings. A host that has lost the
// printer's network goes back to query the printer, and in the end returns to its former
// connection.
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
        // On another network, another printer may have that address.
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

    // An announcement in the printer's own network proves nothing.
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
            return " was refused with that pass phrase by the network ";
        case kNotConfirmed:
            return " closed its own network and did not say whether it joined the network ";
        default:
            return " took too long to join the network ";
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
    // Over USB the broker does not pass the result on to the user.
    if (result != kOk && IsOnUsb(recipient)) {
        ReportProblem(recipient.printer.makeAndModel + " on USB" + Outcome(result) + settings.name);
    }
    return result;
}

WifiSettings SettingsIn(const VendorSdk::WifiConfigInfo& record) {
    return {Base::FieldText(record.ssid), Base::Secret(Base::FieldView(record.pwd))};
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
