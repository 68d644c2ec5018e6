#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace App {

// The printers on the host's USB ports by hardware identifier, as the device manager counts them.
using UsbPortMap = std::map<std::wstring, std::pair<int, int>>;

// Throws Problem when no printer on USB could be reached, or no vendor has that entry point. Else
// one line for each vendor that cannot serve it. `ports` is only for the advice.
std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports);

// Asks each port's vendor again, and returns a line for each port whose printers it does not report
// one and all, or that no vendor lists. `reported` is how many printers were reported before: when
// none can be missing, vendors are left alone.
std::vector<std::string> UnreportedPorts(const UsbPortMap& ports, std::size_t reported);

}  // namespace App
