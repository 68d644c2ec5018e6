// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace Host {

// The protection of an access point, a sum of Protection, from the information elements that it
// broadcasts. `isPrivate`: the access point's privacy bit, which announces some protection.
// Truncated and invalid elements are ignored.
unsigned ProtectionOf(std::string_view elements, bool isPrivate);

// Whether the elements offer WPA version 1 with AES (CCMP) instead of the usual TKIP.
bool TakesAesWithWpa(std::string_view elements);

}  // namespace Host
