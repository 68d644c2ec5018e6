#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/library/host_wifi_control.h"
#include "app/program/settings.h"
#include "base/secret.h"

namespace App {

// The access point that the host is joined to; all empty when it is joined to none, or when the
// problem hides it.
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

// The host's own Wi-Fi. Each may take a while, and throws Interrupted.
HostNetworks NetworksInRange(const Settings& settings);
HostNetworks NetworksToOffer(const Settings& settings);
AccessPoint CurrentAccessPoint(const Settings& settings);

// `network` must be UTF-8. When it is interrupted, or takes too long, the attempt is undone.
JoinOutcome JoinNetwork(const Settings& settings, const std::string& network,
                        const std::shared_ptr<Base::Secret>& passPhrase);

// For who takes the host to another network and may have to bring it back: remembers where it is,
// and sends it back from `network`, when that is where it is now; whether it is on its way. The
// latter is done though the user has asked the program to end.
void RememberNetwork(const Settings& settings);
bool GoBackFrom(const std::string& network);

}  // namespace App
