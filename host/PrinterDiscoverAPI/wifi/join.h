// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

#include "host/PrinterDiscoverAPI/wifi/join_request.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

// Joins the requested network. Scans for it first if it is not in range yet. Throws WifiProblem,
// whose text never contains the pass phrase.
void Join(WifiService& service, const JoinRequest& request, std::chrono::seconds limit);

}  // namespace Host
