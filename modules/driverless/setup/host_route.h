#pragma once

#include <istream>
#include <string>

namespace Driverless {

// The IPv4 address of the interface's gateway by the routing table; without a gateway, as printers
// give none to those who join them, the first address of the interface's network. Empty when
// there is neither.
std::string GatewayOf(const std::string& interface);

// The same by a table as the system prints it.
std::string GatewayIn(std::istream& table, const std::string& interface);

}  // namespace Driverless
