// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "host/PrinterDiscoverAPI/wifi/linux/network_manager_linux.h"

namespace Host {

// The network that NetworkManager is to join, with a new profile.
struct NewProfile {
    const ConnectionSettings& settings;  // values of the types s, b and ay
    std::string_view passPhrase;         // added to the settings when they are sent; may be empty
    const sdbus::ObjectPath& adapter;
    const sdbus::ObjectPath& accessPoint;
};

enum class ProfileLife {
    kVolatile,  // deleted when the network is left
    kKept,
};

struct Begun {
    sdbus::ObjectPath profile;
    sdbus::ObjectPath active;
};

// Starts to join. Throws sdbus::Error, whose text never contains the pass phrase. Leaves no copy of
// the pass phrase in memory; therefore the message is not sent through sdbus-c++, which would leave
// copies.
Begun AddAndActivate(const NewProfile& profile, ProfileLife life);

}  // namespace Host
