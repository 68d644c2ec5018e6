// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "modules/driverless/discovery/asked_address.h"

namespace Driverless {

// Whether an interface of this host, other than the loopback, is up and has an IPv4 address.
bool IsOnNetwork();

// Whether a Wi-Fi interface of this host is up and has an IPv4 address. `classFolder` is where the
// system describes its interfaces.
bool IsOnWifi(const std::string& classFolder = "/sys/class/net");

// Whether `interface` is the number of the loopback interface.
bool IsLoopback(int interface);

// The IPv4 networks of the interface.
std::vector<OwnNetwork> NetworksOf(int interface);

}  // namespace Driverless
