#pragma once

// Which programs of this host take connections from it.

#include <cstdint>
#include <istream>
#include <vector>

namespace Driverless {

struct ListeningPort {
    std::uint16_t port;
    unsigned owner;  // the user whose program it is

    bool operator==(const ListeningPort&) const = default;
};

// Where 127.0.0.1 takes connections.
std::vector<ListeningPort> LocalListeningPorts();

// The same by one of the system's tables, as it prints it.
std::vector<ListeningPort> LocalListeningPortsIn(std::istream& table);

}  // namespace Driverless
