// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

// The profile with which Windows joins the access point's network: its settings, including a pass
// phrase, as an XML document. The profile also finds a network that hides its name. The result is
// the only remaining copy of the pass phrase; the caller wipes it.
std::wstring WlanProfile(const AccessPoint& accessPoint, std::string_view passPhrase);

}  // namespace Host
