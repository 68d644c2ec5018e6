#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/usb_printer.h"

namespace App {

// The printers on the host's USB ports by hardware identifier, as the device manager counts them.
using UsbPortMap = std::map<std::wstring, std::pair<int, int>>;

// Throws Problem when no vendor lists a USB identifier. `ports` is only for the advice.
void RequireUsbIdentifiers(const UsbPortMap& ports);

// Throws Problem when no printer on USB could be reached, or no vendor has that entry point. Else
// one line for each vendor that cannot serve it. `ports` is only for the advice.
std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports);

// A line for each port whose printers its vendor does not report one and all, or that no vendor
// lists. `reported` are those that were: a vendor is asked again only when there are less of it
// than are plugged in.
std::vector<std::string> UnreportedPorts(const UsbPortMap& ports,
                                         const std::vector<UsbPrinter>& reported);

// The same of models that came while a watch ran, which may have reported some.
std::vector<std::string> UnwatchedPorts(const UsbPortMap& ports, bool isAnyReported);

}  // namespace App
