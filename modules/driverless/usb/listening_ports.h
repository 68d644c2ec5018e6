// SPDX-License-Identifier: Apache-2.0

#pragma once

// The programs of this host that accept local connections.

#include <cstdint>
#include <istream>
#include <vector>

namespace Driverless {

struct ListeningPort {
    std::uint16_t port;
    unsigned owner;  // the user id of the program

    bool operator==(const ListeningPort&) const = default;
};

// The listening ports at 127.0.0.1.
std::vector<ListeningPort> LocalListeningPorts();

// The same from one of the system's tables in text form.
std::vector<ListeningPort> LocalListeningPortsIn(std::istream& table);

}  // namespace Driverless
