#pragma once

#include <chrono>

#include "host/PrinterDiscoverAPI/wifi/join_request.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

// Joins what was asked for, looking closer when it is not in sight at once. Throws WifiProblem,
// without the pass phrase.
void Join(WifiService& service, const JoinRequest& request, std::chrono::seconds limit);

}  // namespace Host
