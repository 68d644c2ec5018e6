// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/linux/activation_linux.h"

#include <algorithm>

#include "host/PrinterDiscoverAPI/wifi/linux/new_profile_linux.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

using namespace NetworkManagerName;

// How often the attempt's state is checked when no signal arrives.
constexpr std::chrono::milliseconds kLookAgain{500};

}  // namespace

Activation::Activation(const NetworkManager& service, const sdbus::ObjectPath& wifiAdapter,
                       bool offersSae)
    : manager(service), adapter(wifiAdapter), device(manager.Object(adapter)), answers(offersSae) {
    device->uponSignal("StateChanged")
        .onInterface(kDevice)
        .call([this](std::uint32_t now, std::uint32_t /*before*/, std::uint32_t why) {
            answers.AdapterIs(now, why);
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
    Listen();
}

void Activation::StartNew(const ConnectionSettings& settings, std::string_view passPhrase,
                          const sdbus::ObjectPath& accessPoint) {
    const NewProfile profile{settings, passPhrase, adapter, accessPoint};
    Begun begun;
    try {
        begun = AddAndActivate(profile, ProfileLife::kVolatile);
    } catch (const sdbus::Error& error) {
        // NetworkManager before version 1.16 always saves the profile.
        if (!IsNoSuchObject(error)) {
            throw;
        }
        begun = AddAndActivate(profile, ProfileLife::kKept);
    }
    ownProfile = begun.profile;
    active = begun.active;
    Listen();
}

// Listens for the attempt's own reasons.
void Activation::Listen() {
    attempt = manager.Object(active);
    attempt->uponSignal("StateChanged")
        .onInterface(kActive)
        .call([this](std::uint32_t now, std::uint32_t why) { answers.AttemptIs(now, why); });
    attempt->finishRegistration();
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
    const auto limit =
        std::chrono::ceil<std::chrono::seconds>(deadline - NetworkManager::Clock::now());
    for (;;) {
        Undertaking::GoOn();
        const auto state = static_cast<State>(ActiveState());
        if (state == State::kActivated) {
            hasSucceeded = true;
            return;
        }
        // The adapter's signals about the attempt have arrived before.
        manager.AwaitSignals(NetworkManager::Clock::now());
        if (state == State::kGone || answers.IsRefused()) {
            throw WifiProblem(answers.WhyEnded());
        }
        const auto now = NetworkManager::Clock::now();
        if (now >= deadline) {
            throw WifiProblem(answers.WhyNotIn(limit.count()));
        }
        manager.AwaitSignals(std::min(deadline, now + kLookAgain));
    }
}

// Ignores errors: the service may be gone, or may have cleaned up itself.
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
