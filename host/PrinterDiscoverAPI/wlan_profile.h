#pragma once

#include <string>

#include "host/PrinterDiscoverAPI/access_point.h"

namespace Host {

// The profile with which Windows joins the access point's network: its settings, with the pass
// phrase if there is one, as an XML document. The profile also finds a network that hides its name.
std::wstring WlanProfile(const AccessPoint& accessPoint, const std::string& passPhrase);

}  // namespace Host
