// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/offered_networks.h"

#include <algorithm>
#include <cstdlib>

#include "base/text/record_field.h"
#include "modules/driverless/setup/printer_network.h"

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

VendorSdk::WifiConfigInfo ToRecord(const NetworkInRange& network) {
    VendorSdk::WifiConfigInfo record{};
    record.rssi = static_cast<float>(network.quality);
    Base::PutField(record.ssid, network.name);
    return record;
}

std::vector<NetworkInRange> StrongestOf(std::vector<NetworkInRange> networks, int weakest,
                                        std::size_t most) {
    std::erase_if(networks, [weakest](const auto& one) { return one.quality < weakest; });
    std::stable_sort(networks.begin(), networks.end(), [](const auto& left, const auto& right) {
        return left.quality > right.quality;
    });
    if (networks.size() > most) {
        networks.resize(most);
    }
    return networks;
}

}  // namespace Driverless
