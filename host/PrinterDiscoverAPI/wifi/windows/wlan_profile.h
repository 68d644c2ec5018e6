#pragma once

#include <string>
#include <string_view>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"

namespace Host {

// The profile with which Windows joins the access point's network: its settings, with the pass
// phrase if there is one, as an XML document. The profile also finds a network that hides its name.
// It is the only copy of the pass phrase that is left.
std::wstring WlanProfile(const AccessPoint& accessPoint, std::string_view passPhrase);

}  // namespace Host
