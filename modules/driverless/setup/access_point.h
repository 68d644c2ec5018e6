// SPDX-License-Identifier: Apache-2.0

#pragma once

// The printer whose own network the host is joined to.

#include <optional>

#include "modules/driverless/ipp/ipp_query.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

struct AccessPoint {
    std::string network;  // its name
    Printer printer;
    PrinterAttributes attributes;
};

struct AccessPointSearch {
    int result;  // IsConnectCurrentWifiAP's
    std::optional<AccessPoint> found;
};

// Checks the network's name first, and queries the network's gateway only if the name may be a
// printer's. Waits kAnswerPatience for an answer. Right after the host has joined the printer may
// not be reachable yet: until a printer has answered in that network, the query is repeated for the
// time in the environment variable DRIVERLESS_FIRST_SECONDS.
AccessPointSearch FindAccessPoint();

// The printer's address in the printer's own network, if the host is joined to a network with such
// a name; empty if it is not; nothing if that is not known.
std::optional<std::string> AddressOnPrintersNetwork(Clock::time_point deadline);

}  // namespace Driverless
