#pragma once

// What a printer is told of a Wi-Fi network.

#include <string>

#include "base/secret.h"

namespace Driverless {

struct WifiSettings {
    std::string name;  // UTF-8
    Base::Secret passPhrase;
};

// Why these settings cannot be sent; empty when they can. The name has 1 to 32 bytes of UTF-8, the
// pass phrase 8 to 63 bytes, or none for a network without one.
std::string ProblemWith(const WifiSettings& settings);

}  // namespace Driverless
