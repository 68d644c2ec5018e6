#pragma once

// Which announced addresses are asked. Anybody on the network may announce any address, and must
// not make this host talk to others, or to itself.

#include <cstdint>
#include <string>
#include <vector>

namespace Driverless {

// An IPv4 network that the host is on, in host byte order. `peer`: the other end of a link that has
// but two.
struct OwnNetwork {
    std::uint32_t address = 0;
    std::uint32_t mask = 0;
    std::uint32_t peer = 0;
};

// Why the address is not asked; empty when it may be. `networks` are those of the interface by
// which the announcement came; `byThisHost`: this host itself announced it.
std::string WhyNotAsked(const std::string& address, const std::vector<OwnNetwork>& networks,
                        bool byThisHost);

}  // namespace Driverless
