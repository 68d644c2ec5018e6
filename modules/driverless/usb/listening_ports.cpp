// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/listening_ports.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace Driverless {

namespace {

constexpr const char* kListening = "0A";

// Whether this is 127.0.0.1 or the wildcard address, in IPv4 or IPv6, in the tables' form on a
// little-endian system.
bool TakesLocalConnections(const std::string& address) {
    constexpr std::array<const char*, 4> wanted{"0100007F", "00000000",
                                                "0000000000000000FFFF00000100007F",
                                                "00000000000000000000000000000000"};
    return std::find(wanted.begin(), wanted.end(), address) != wanted.end();
}

// Parses a row: number, local address and port, remote address and port, state, two pairs of
// counters, one counter, owner, and more.
std::optional<ListeningPort> PortIn(const std::string& row) {
    std::istringstream words(row);
    std::string number;
    std::string local;
    std::string remote;
    std::string state;
    std::string queues;
    std::string timer;
    std::string retries;
    unsigned owner = 0;
    words >> number >> local >> remote >> state >> queues >> timer >> retries >> owner;
    const std::size_t colon = local.find(':');
    if (!words || state != kListening || colon == std::string::npos ||
        !TakesLocalConnections(local.substr(0, colon))) {
        return std::nullopt;
    }
    const unsigned long port = std::strtoul(local.c_str() + colon + 1, nullptr, 16);
    return ListeningPort{static_cast<std::uint16_t>(port), owner};
}

}  // namespace

std::vector<ListeningPort> LocalListeningPortsIn(std::istream& table) {
    std::vector<ListeningPort> ports;
    for (std::string row; std::getline(table, row);) {
        if (const auto port = PortIn(row)) {
            ports.push_back(*port);
        }
    }
    return ports;
}

std::vector<ListeningPort> LocalListeningPorts() {
    std::vector<ListeningPort> ports;
    for (const char* path : {"/proc/self/net/tcp", "/proc/self/net/tcp6"}) {
        std::ifstream table(path);
        const auto found = LocalListeningPortsIn(table);
        ports.insert(ports.end(), found.begin(), found.end());
    }
    return ports;
}

}  // namespace Driverless
