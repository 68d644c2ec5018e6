#pragma once

// Which of the networks in range are to be reported, and when again.

#include <map>
#include <string>
#include <vector>

#include "VendorSdk/records.h"
#include "modules/driverless/setup/host_wifi.h"

namespace Driverless {

// A signal that has changed by this much is news.
constexpr int kNewsworthyChange = 10;

class OfferedNetworks {
public:
    // Those of `inRange` that were not reported yet, or with another signal. Printers' own are left
    // out: those of Wi-Fi Direct, and `current`, the one the host is joined to, when it may be one.
    std::vector<NetworkInRange> Take(const std::vector<NetworkInRange>& inRange,
                                     const std::string& current);

private:
    bool IsNews(const NetworkInRange& network);

    std::map<std::string, int> reported;
};

VendorSdk::WifiConfigInfo ToRecord(const NetworkInRange& network);

// The strongest first, and at most `most` of them; those weaker than `weakest` are left out.
std::vector<NetworkInRange> StrongestOf(std::vector<NetworkInRange> networks, int weakest,
                                        std::size_t most);

}  // namespace Driverless
