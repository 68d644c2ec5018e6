// SPDX-License-Identifier: Apache-2.0

#pragma once

// Recognises networks that may be a printer's own. The name only decides whether to query the
// network's gateway; only the answer shows whether there is a printer.

#include <string_view>

namespace Driverless {

// Whether the name has the prefix of Wi-Fi Direct: a network of one device and its users.
bool IsWifiDirect(std::string_view name);

// Whether a network with this name may be a printer's own: a Wi-Fi Direct network; a name that
// contains "print" or "setup", in upper or lower case; or a name that matches one of `patterns`,
// which are separated by semicolons and in which "*" matches any text.
bool MayBePrintersOwn(std::string_view name, std::string_view patterns);

// The same with the patterns of the environment variable DEVICEDISCOVER_PRINTER_NETWORKS.
bool MayBePrintersOwn(std::string_view name);

}  // namespace Driverless
