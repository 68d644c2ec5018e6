// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides which announced addresses are queried. Anybody on the network may announce any address,
// but must not make this host connect to third parties, or to itself.

#include <cstdint>
#include <string>
#include <vector>

namespace Driverless {

// An IPv4 network of the host, in host byte order. `peer`: the other end of a point-to-point link.
struct OwnNetwork {
    std::uint32_t address = 0;
    std::uint32_t mask = 0;
    std::uint32_t peer = 0;
};

// Why the address must not be queried; empty when it may be. `networks`: the networks of the
// interface that received the announcement. `byThisHost`: this host itself announced it.
std::string WhyNotAsked(const std::string& address, const std::vector<OwnNetwork>& networks,
                        bool byThisHost);

}  // namespace Driverless
