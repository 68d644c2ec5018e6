#pragma once

// The printer whose own network the host is joined to.

#include <optional>

#include "ipp_query.h"
#include "printer.h"

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
// printer's. Comes back by `deadline`.
AccessPointSearch FindAccessPoint(Clock::time_point deadline);

// The address at which a printer's own network, if the host is joined to one by its name, has its
// printer; empty when it is joined to none, and nothing when that is not known.
std::optional<std::string> AddressOnPrintersNetwork(Clock::time_point deadline);

}  // namespace Driverless
