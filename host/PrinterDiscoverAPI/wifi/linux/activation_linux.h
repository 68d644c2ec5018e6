// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/PrinterDiscoverAPI/wifi/linux/attempt_answers_linux.h"
#include "host/PrinterDiscoverAPI/wifi/linux/network_manager_linux.h"

namespace Host {

// One attempt of an adapter to join a network, from its start to its outcome. The destructor undoes
// an attempt that did not succeed.
class Activation {
public:
    // `offersSae`: the access point has WPA3.
    Activation(const NetworkManager& service, const sdbus::ObjectPath& wifiAdapter, bool offersSae);
    ~Activation();
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

    // Starts the attempt with a profile that the service has saved, or with a new profile that is
    // not saved.
    void StartSaved(const sdbus::ObjectPath& profile, const sdbus::ObjectPath& accessPoint);
    void StartNew(const ConnectionSettings& settings, std::string_view passPhrase,
                  const sdbus::ObjectPath& accessPoint);

    // Waits for the outcome. Throws WifiProblem unless the network was joined.
    void Await(NetworkManager::Clock::time_point deadline);

private:
    enum class State : std::uint32_t { kActivated = 2, kGone = 4 };

    void Listen();
    std::uint32_t ActiveState() const;
    void Undo() const;

    const NetworkManager& manager;
    const sdbus::ObjectPath adapter;
    std::unique_ptr<sdbus::IProxy> device;
    std::unique_ptr<sdbus::IProxy> attempt;
    sdbus::ObjectPath active;
    sdbus::ObjectPath ownProfile;  // made for this attempt; empty when none was
    AttemptAnswers answers;
    bool hasSucceeded = false;
};

}  // namespace Host
