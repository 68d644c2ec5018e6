#include "host/PrinterDiscoverAPI/activation_linux.h"

#include <algorithm>

#include "host/PrinterDiscoverAPI/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi_service.h"

namespace Host {

namespace {

using namespace NetworkManagerName;

// The attempt's state is looked at this often even when no signal comes.
constexpr std::chrono::milliseconds kLookAgain{500};

// Of an adapter.
constexpr std::uint32_t kWantsSecrets = 60;
constexpr std::uint32_t kFailed = 120;

enum Reason : std::uint32_t {
    kNothing = 0,
    kUnknown = 1,
    kNoAddress = 5,
    kNoSecrets = 7,
    kSupplicantDisconnected = 8,
    kSupplicantMisconfigured = 9,
    kSupplicantFailed = 10,
    kSupplicantTimedOut = 11,
    kDhcpNotStarted = 15,
    kDhcpError = 16,
    kDhcpFailed = 17,
    kAdapterRemoved = 36,
    kEndedByUser = 39,
    kNameNotFound = 53,
    kOtherConnection = 60
};

constexpr const char* kWrongPassPhrase = "the pass phrase is wrong";

std::string DescribeReason(std::uint32_t reason) {
    switch (reason) {
        case kNoSecrets:
            return kWrongPassPhrase;
        case kSupplicantDisconnected:
            return "the access point refused; the pass phrase may be wrong";
        case kSupplicantMisconfigured:
        case kSupplicantFailed:
            return "the adapter cannot join such a network";
        case kSupplicantTimedOut:
            return "the access point did not answer";
        case kNoAddress:
        case kDhcpNotStarted:
        case kDhcpError:
        case kDhcpFailed:
            return "the network gave the host no address";
        case kAdapterRemoved:
            return "the Wi-Fi adapter was removed";
        case kEndedByUser:
            return "someone ended it";
        case kNameNotFound:
            return "the network is not in range any more";
        case kOtherConnection:
            return "another connection took the adapter";
        default:
            return "NetworkManager gave up, reason " + std::to_string(reason);
    }
}

}  // namespace

Activation::Activation(const NetworkManager& service, const sdbus::ObjectPath& wifiAdapter)
    : manager(service), adapter(wifiAdapter), device(manager.Object(adapter)) {
    device->uponSignal("StateChanged")
        .onInterface(kDevice)
        .call([this](std::uint32_t now, std::uint32_t /*before*/, std::uint32_t why) {
            OnDeviceState(now, why);
        });
    device->finishRegistration();
}

Activation::~Activation() {
    if (!hasSucceeded) {
        Undo();
    }
}

void Activation::StartSaved(const sdbus::ObjectPath& profile,
                            const sdbus::ObjectPath& accessPoint) {
    manager.Manager()
        ->callMethod("ActivateConnection")
        .onInterface(kService)
        .withArguments(profile, adapter, accessPoint)
        .storeResultsTo(active);
}

void Activation::StartNew(const ConnectionSettings& settings,
                          const sdbus::ObjectPath& accessPoint) {
    const auto proxy = manager.Manager();
    try {
        // Such a profile goes when the network is left.
        const Properties options{{"persist", sdbus::Variant(std::string("volatile"))}};
        Properties result;
        proxy->callMethod("AddAndActivateConnection2")
            .onInterface(kService)
            .withArguments(settings, adapter, accessPoint, options)
            .storeResultsTo(ownProfile, active, result);
    } catch (const sdbus::Error& error) {
        // Services before version 1.16 keep what they are given.
        if (!IsNoSuchObject(error)) {
            throw;
        }
        proxy->callMethod("AddAndActivateConnection")
            .onInterface(kService)
            .withArguments(settings, adapter, accessPoint)
            .storeResultsTo(ownProfile, active);
    }
}

void Activation::OnDeviceState(std::uint32_t now, std::uint32_t why) {
    if (now == kWantsSecrets && why == kSupplicantDisconnected) {
        isRefused = true;
    } else if (now == kFailed) {
        hasFailed = true;
        reason = why;
    } else if (!hasFailed && why != kNothing && why != kUnknown) {
        reason = why;
    }
}

std::uint32_t Activation::ActiveState() const {
    constexpr auto kGone = static_cast<std::uint32_t>(State::kGone);
    try {
        return ValueOr<std::uint32_t>(manager.PropertiesOf(active, kActive), "State", kGone);
    } catch (const sdbus::Error& error) {
        if (IsNoSuchObject(error)) {
            return kGone;
        }
        throw;
    }
}

void Activation::Await(NetworkManager::Clock::time_point deadline) {
    for (;;) {
        Undertaking::GoOn();
        const auto state = static_cast<State>(ActiveState());
        if (state == State::kActivated) {
            hasSucceeded = true;
            return;
        }
        // What the adapter said of it has arrived before.
        manager.AwaitSignals(NetworkManager::Clock::now());
        if (isRefused) {
            throw WifiProblem(kWrongPassPhrase);
        }
        if (state == State::kGone) {
            throw WifiProblem(DescribeReason(reason));
        }
        const auto now = NetworkManager::Clock::now();
        if (now >= deadline) {
            throw WifiProblem("not joined within " + std::to_string(kJoinLimit.count()) + " s");
        }
        manager.AwaitSignals(std::min(deadline, now + kLookAgain));
    }
}

// The service may be gone, or have tidied up by itself.
void Activation::Undo() const {
    try {
        if (!active.empty()) {
            manager.Manager()
                ->callMethod("DeactivateConnection")
                .onInterface(kService)
                .withArguments(active);
        }
    } catch (const sdbus::Error& error) {
        if (IsServiceLost(error)) {
            return;
        }
    }
    try {
        if (!ownProfile.empty()) {
            manager.Object(ownProfile)->callMethod("Delete").onInterface(kSaved);
        }
    } catch (const sdbus::Error&) {
        return;
    }
}

}  // namespace Host
