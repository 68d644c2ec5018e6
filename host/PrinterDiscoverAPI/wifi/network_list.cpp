// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/network_list.h"

#include <algorithm>
#include <set>

#include "host/PrinterDiscoverAPI/wifi/network_name.h"

namespace Host {

namespace {

using PrinterWifiApiStruct::WlanInfoData;

std::uint32_t SecurityOf(unsigned protection) {
    using namespace PrinterWifiApiStruct;
    std::uint32_t security = 0;
    if ((protection & kWep) != 0) {
        security |= WLAN_SECURITY_WEP;
    }
    if ((protection & kAnyPersonal) != 0) {
        security |= WLAN_SECURITY_WPA_PERSONAL;
    }
    if ((protection & kEnterprise) != 0) {
        security |= WLAN_SECURITY_WPA_ENTERPRISE;
    }
    return security;
}

// A printer joins access points, with a name and a pass phrase that must be text.
bool CanBeOffered(const AccessPoint& accessPoint) {
    return !accessPoint.name.empty() && IsText(accessPoint.name) && accessPoint.infrastructure &&
           (accessPoint.protection == 0 || (accessPoint.protection & kAnyPersonal) != 0);
}

WlanInfoData NetworkOf(const AccessPoint& accessPoint) {
    WlanInfoData network{};
    network.ssid = NetworkNameText(accessPoint.name);
    network.attributes.signalQuality = std::clamp(accessPoint.quality, 0, 100);
    network.attributes.security = SecurityOf(accessPoint.protection);
    network.excludeFlag = !CanBeOffered(accessPoint);
    return network;
}

}  // namespace

std::vector<WlanInfoData> NetworksOf(std::vector<AccessPoint> accessPoints) {
    std::stable_sort(accessPoints.begin(), accessPoints.end(),
                     [](const AccessPoint& one, const AccessPoint& other) {
                         return one.quality > other.quality;
                     });
    std::vector<WlanInfoData> networks;
    std::set<std::string> names;
    for (const AccessPoint& accessPoint : accessPoints) {
        if (accessPoint.name.empty() || names.insert(accessPoint.name).second) {
            networks.push_back(NetworkOf(accessPoint));
        }
    }
    return networks;
}

}  // namespace Host
