// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/library/host_wifi_control.h"
#include "base/secret.h"

namespace App {

// The access point that the host is joined to; all texts are empty when there is none, or when
// `problem` hides it.
struct AccessPoint {
    std::string network;
    std::string hardwareAddress;
    std::string interfaceName;
    HostWifiProblem problem;
};

struct HostNetworks {
    std::vector<HostNetwork> networks;
    HostWifiProblem problem;
};

struct JoinOutcome {
    bool joined = false;
    HostWifiProblem problem;
};

// Operations of the host's own Wi-Fi. Each may take a while and throws Interrupted.
HostNetworks NetworksInRange();
HostNetworks NetworksToOffer();
AccessPoint CurrentAccessPoint();

// `network` must be UTF-8. An attempt that is interrupted or takes too long is undone.
JoinOutcome JoinNetwork(const std::string& network,
                        const std::shared_ptr<Base::Secret>& passPhrase);

// RememberNetwork remembers the host's current network. GoBackFrom starts the return to it, if the
// host is joined to `network` now, and returns whether the host is returning; it works even after
// the user has asked the program to end.
void RememberNetwork();
bool GoBackFrom(const std::string& network);

}  // namespace App
