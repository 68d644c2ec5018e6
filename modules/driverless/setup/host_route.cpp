// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/host_route.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <optional>
#include <sstream>

namespace Driverless {

namespace {

constexpr std::uint32_t kUp = 1;
constexpr std::uint32_t kGateway = 2;

// Addresses are in the byte order of this machine.
struct Route {
    std::string interface;
    std::uint32_t destination = 0;
    std::uint32_t gateway = 0;
    std::uint32_t flags = 0;
    std::uint32_t metric = 0;
    std::uint32_t mask = 0;

    bool IsDefault() const { return (flags & kGateway) != 0 && destination == 0 && mask == 0; }

    // A route to a directly connected network, not multicast and not a single host.
    bool IsNetwork() const {
        return (flags & kGateway) == 0 && mask != 0 && mask < 0xFFFFFFFEU &&
               (destination >> 28U) != 0xE;
    }
};

std::optional<Route> Parse(const std::string& line) {
    std::istringstream words(line);
    Route route;
    std::string ignored;
    words >> route.interface >> std::hex >> route.destination >> route.gateway >> route.flags >>
        ignored >> ignored >> std::dec >> route.metric >> std::hex >> route.mask;
    if (!words || (route.flags & kUp) == 0) {
        return std::nullopt;
    }
    route.destination = ntohl(route.destination);
    route.gateway = ntohl(route.gateway);
    route.mask = ntohl(route.mask);
    return route;
}

// Keeps the route that the system would prefer.
void TakeBetter(std::optional<Route>& best, const Route& route) {
    if (!best || route.metric < best->metric) {
        best = route;
    }
}

std::string AddressText(std::uint32_t address) {
    const in_addr network{htonl(address)};
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &network, text.data(), static_cast<socklen_t>(text.size()));
    return text.data();
}

}  // namespace

std::string GatewayIn(std::istream& table, const std::string& interface) {
    std::optional<Route> byDefault;
    std::optional<Route> network;
    for (std::string line; std::getline(table, line);) {
        const std::optional<Route> route = Parse(line);
        if (!route || route->interface != interface) {
            continue;
        }
        if (route->IsDefault()) {
            TakeBetter(byDefault, *route);
        } else if (route->IsNetwork()) {
            TakeBetter(network, *route);
        }
    }
    if (byDefault) {
        return AddressText(byDefault->gateway);
    }
    return network ? AddressText(network->destination + 1) : std::string();
}

std::string GatewayOf(const std::string& interface) {
    std::ifstream table("/proc/net/route");
    return GatewayIn(table, interface);
}

}  // namespace Driverless
