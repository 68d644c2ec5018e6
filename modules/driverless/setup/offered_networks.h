// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides which networks in range are reported, and when they are reported again.

#include <map>
#include <string>
#include <vector>

#include "VendorSdk/records.h"
#include "modules/driverless/setup/host_wifi.h"

namespace Driverless {

// A network is reported again when its signal has changed by this much.
constexpr int kNewsworthyChange = 10;

class OfferedNetworks {
public:
    // The networks of `inRange` that were not reported yet, or with another signal. Leaves out
    // printers' own networks: those of Wi-Fi Direct, and `current`, which the host is joined to, if
    // its name may be a printer's.
    std::vector<NetworkInRange> Take(const std::vector<NetworkInRange>& inRange,
                                     const std::string& current);

private:
    bool IsNews(const NetworkInRange& network);

    std::map<std::string, int> reported;
};

VendorSdk::WifiConfigInfo ToRecord(const NetworkInRange& network);

// At most `most` networks, the strongest first, without those weaker than `weakest`.
std::vector<NetworkInRange> StrongestOf(std::vector<NetworkInRange> networks, int weakest,
                                        std::size_t most);

}  // namespace Driverless
