#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/network.h"
#include "app/secret.h"
#include "app/settings.h"

namespace App {

// The access point that the host is joined to; all empty when it is joined to none.
struct AccessPoint {
    std::string network;
    std::string hardwareAddress;
    std::string interfaceName;
};

// The host's own Wi-Fi. Each may take a while, and throws Interrupted.
std::vector<HostNetwork> NetworksInRange(const Settings& settings);
std::vector<HostNetwork> NetworksToOffer(const Settings& settings);
AccessPoint CurrentAccessPoint(const Settings& settings);

// `network` must be UTF-8.
bool JoinNetwork(const Settings& settings, const std::string& network,
                 const std::shared_ptr<Secret>& passPhrase);

}  // namespace App
