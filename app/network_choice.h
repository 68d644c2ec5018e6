#pragma once

#include <chrono>
#include <string>

#include "app/settings.h"

namespace App {

// Lets the user pick a network from a numbered list on the terminal: of those that the printer
// reports, or, where it reports none, of those that this computer would offer; without the network
// `leftOut`. `time` is how long the printer has. Returns the network's name; an empty one when the
// user gave none. Throws Interrupted.
std::string ChooseNetwork(const Settings& settings, std::chrono::duration<double> time,
                          const std::string& leftOut);

}  // namespace App
