// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <istream>
#include <string>

namespace Driverless {

// The IPv4 address of the interface's gateway from the routing table. Many printers announce no
// gateway: then the first address of the interface's network. Empty when there is neither.
std::string GatewayOf(const std::string& interface);

// The same from a routing table in the system's text form.
std::string GatewayIn(std::istream& table, const std::string& interface);

}  // namespace Driverless
