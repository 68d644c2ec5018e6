#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/program/settings.h"

namespace App {

// Lets the user pick a network from a numbered list on the terminal: of those that the printer
// reports, or, where it reports none, of those that this computer would offer; without the network
// `leftOut`. Returns the network's name; an empty one when the user gave none. Throws Interrupted.
std::string ChooseNetwork(const Settings& settings,
                          const std::function<std::vector<Network>()>& seenByPrinter,
                          const std::string& leftOut);

// What the printer sees whose access point the host is joined to. `time` is how long it has. Throws
// Interrupted.
std::vector<Network> SeenFromAccessPoint(const Settings& settings,
                                         std::chrono::duration<double> time);

}  // namespace App
