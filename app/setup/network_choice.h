// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "app/items/network.h"

namespace App {

// Lets the user pick a network from a numbered list on the terminal: the networks that the printer
// reports or, if it reports none, those that this computer would offer; without the network
// `leftOut`. Returns the network's name; empty if the user picked none. Throws Interrupted.
std::string ChooseNetwork(const std::function<std::vector<Network>()>& seenByPrinter,
                          const std::string& leftOut);

// The networks that the printer reports whose access point the host is joined to, within `time`.
// Throws Interrupted.
std::vector<Network> SeenFromAccessPoint(std::chrono::duration<double> time);

}  // namespace App
