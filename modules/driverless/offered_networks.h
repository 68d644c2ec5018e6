#pragma once

// Which of the networks in range are to be reported, and when again.

#include <map>
#include <string>
#include <vector>

#include "host_wifi.h"

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

}  // namespace Driverless
