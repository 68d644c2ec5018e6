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

// Looks at the network's name first, and asks the network's gateway only when the name may be a
// printer's. Waits for an answer for kAnswerPatience; right after the host has joined, the way to
// the printer may not be open yet: until one has answered in that network it is asked again, for as
// long as the environment variable DRIVERLESS_FIRST_SECONDS says.
AccessPointSearch FindAccessPoint();

// The address at which a printer's own network, if the host is joined to one by its name, has its
// printer; empty when it is joined to none, and nothing when that is not known.
std::optional<std::string> AddressOnPrintersNetwork(Clock::time_point deadline);

}  // namespace Driverless
