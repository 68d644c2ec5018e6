#pragma once

#include <string_view>

#include "host/PrinterDiscoverAPI/wifi/linux/network_manager_linux.h"

namespace Host {

// What NetworkManager is to join, with a profile of its own.
struct NewProfile {
    const ConnectionSettings& settings;  // values of the types s, b and ay
    std::string_view passPhrase;         // joins the settings on the way; empty: none
    const sdbus::ObjectPath& adapter;
    const sdbus::ObjectPath& accessPoint;
};

enum class ProfileLife {
    kVolatile,  // until the network is left
    kKept,
};

struct Begun {
    sdbus::ObjectPath profile;
    sdbus::ObjectPath active;
};

// Begins the joining. Throws sdbus::Error, whose words are without the pass phrase. No copy of that
// stays in the process: the message goes past sdbus-c++, which would leave some.
Begun AddAndActivate(const NewProfile& profile, ProfileLife life);

}  // namespace Host
