// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

namespace Host {

// The host's visit to another network; there is one at a time. Both functions throw WifiProblem.
void VisitNetwork(const std::wstring& network, std::chrono::seconds limit);
void EndNetworkVisit();

}  // namespace Host
