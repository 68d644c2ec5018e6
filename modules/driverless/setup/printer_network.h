#pragma once

// Which networks are likely to be a printer's own. The name only decides whether it is worth asking
// the network's gateway: whether there is a printer, its answer tells.

#include <string_view>

namespace Driverless {

// Whether the name begins as those of Wi-Fi Direct do: a network that consists of one device and
// those that use it.
bool IsWifiDirect(std::string_view name);

// Whether a network of this name may be a printer's own: one of Wi-Fi Direct; one with "print" or
// "setup" in its name, in letters of either case; or one that matches `patterns`, the names of
// further ones, separated by semicolons, in which "*" stands for anything.
bool MayBePrintersOwn(std::string_view name, std::string_view patterns);

// The same with the patterns of the environment variable DEVICEDISCOVER_PRINTER_NETWORKS.
bool MayBePrintersOwn(std::string_view name);

}  // namespace Driverless
