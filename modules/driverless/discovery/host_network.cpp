// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/host_network.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace Driverless {

namespace {

std::uint32_t NumberOf(const sockaddr* address) {
    if (address == nullptr || address->sa_family != AF_INET) {
        return 0;
    }
    sockaddr_in internet{};
    std::memcpy(&internet, address, sizeof internet);
    return ntohl(internet.sin_addr.s_addr);
}

// Whether there is an interface that is up, has an IPv4 address and fits; true when that cannot be
// found out.
template <class Fits>
bool HasInterface(Fits fits) {
    ifaddrs* interfaces = nullptr;
    if (getifaddrs(&interfaces) != 0) {
        return true;
    }
    bool found = false;
    for (const ifaddrs* one = interfaces; one != nullptr && !found; one = one->ifa_next) {
        const bool up = (one->ifa_flags & IFF_UP) != 0 && (one->ifa_flags & IFF_RUNNING) != 0;
        const bool hasAddress = one->ifa_addr != nullptr && one->ifa_addr->sa_family == AF_INET;
        found = up && hasAddress && fits(*one);
    }
    freeifaddrs(interfaces);
    return found;
}

}  // namespace

bool IsOnNetwork() {
    return HasInterface([](const ifaddrs& one) { return (one.ifa_flags & IFF_LOOPBACK) == 0; });
}

bool IsOnWifi(const std::string& classFolder) {
    return HasInterface([&](const ifaddrs& one) {
        std::error_code failure;
        return std::filesystem::exists(
            std::filesystem::path(classFolder) / one.ifa_name / "phy80211", failure);
    });
}

bool IsLoopback(int interface) {
    return interface > 0 && static_cast<unsigned>(interface) == if_nametoindex("lo");
}

std::vector<OwnNetwork> NetworksOf(int interface) {
    std::array<char, IF_NAMESIZE> name{};
    ifaddrs* interfaces = nullptr;
    if (interface <= 0 ||
        if_indextoname(static_cast<unsigned>(interface), name.data()) == nullptr ||
        getifaddrs(&interfaces) != 0) {
        return {};
    }
    std::vector<OwnNetwork> networks;
    for (const ifaddrs* one = interfaces; one != nullptr; one = one->ifa_next) {
        const std::uint32_t address = NumberOf(one->ifa_addr);
        if (address != 0 && std::strcmp(one->ifa_name, name.data()) == 0) {
            const bool two = (one->ifa_flags & IFF_POINTOPOINT) != 0;
            networks.push_back(
                {address, NumberOf(one->ifa_netmask), two ? NumberOf(one->ifa_dstaddr) : 0});
        }
    }
    freeifaddrs(interfaces);
    return networks;
}

}  // namespace Driverless
