// SPDX-License-Identifier: Apache-2.0

#pragma once

// The settings of a Wi-Fi network that are sent to a printer.

#include <string>

#include "base/secret.h"

namespace Driverless {

struct WifiSettings {
    std::string name;  // UTF-8
    Base::Secret passPhrase;
};

// Why these settings cannot be sent; empty when they are valid. The name has 1 to 32 bytes of
// UTF-8; the pass phrase has 8 to 63 bytes, or is empty for an open network.
std::string ProblemWith(const WifiSettings& settings);

}  // namespace Driverless
