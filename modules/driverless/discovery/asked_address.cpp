// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/asked_address.h"

#include <arpa/inet.h>

#include <algorithm>

namespace Driverless {

namespace {

constexpr std::uint32_t kLoopback = 127;
constexpr std::uint32_t kFirstMulticast = 224;  // and reserved ones, up to the broadcast address

// The first and the last address of a network do not belong to a host, unless the network has only
// two.
bool IsHostOf(const OwnNetwork& network, std::uint32_t address) {
    const std::uint32_t part = address & ~network.mask;
    const bool small = ~network.mask <= 1;
    const bool inside = (address & network.mask) == (network.address & network.mask);
    return address == network.peer || (inside && (small || (part != 0 && part != ~network.mask)));
}

}  // namespace

std::string WhyNotAsked(const std::string& address, const std::vector<OwnNetwork>& networks,
                        bool byThisHost) {
    in_addr parsed{};
    if (inet_pton(AF_INET, address.c_str(), &parsed) != 1) {
        return "it is not an IPv4 address";
    }
    const std::uint32_t number = ntohl(parsed.s_addr);
    const std::uint32_t first = number >> 24;
    if (first == 0 || first >= kFirstMulticast) {
        return "it is not the address of one host";
    }
    if (first == kLoopback) {
        return byThisHost ? "" : "it is this host's own, and another host announces it";
    }
    const bool near = std::any_of(networks.begin(), networks.end(),
                                  [&](const auto& network) { return IsHostOf(network, number); });
    return near ? "" : "it is on none of the networks that the announcement came from";
}

}  // namespace Driverless
