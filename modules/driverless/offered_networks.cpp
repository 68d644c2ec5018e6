#include "offered_networks.h"

#include <cstdlib>

#include "printer_network.h"

namespace Driverless {

std::vector<NetworkInRange> OfferedNetworks::Take(const std::vector<NetworkInRange>& inRange,
                                                  const std::string& current) {
    std::vector<NetworkInRange> news;
    for (const NetworkInRange& network : inRange) {
        const bool printersOwn = IsWifiDirect(network.name) ||
                                 (network.name == current && MayBePrintersOwn(network.name));
        if (!printersOwn && IsNews(network)) {
            news.push_back(network);
        }
    }
    return news;
}

bool OfferedNetworks::IsNews(const NetworkInRange& network) {
    const auto [known, isNew] = reported.try_emplace(network.name, network.quality);
    if (!isNew && std::abs(known->second - network.quality) < kNewsworthyChange) {
        return false;
    }
    known->second = network.quality;
    return true;
}

}  // namespace Driverless
