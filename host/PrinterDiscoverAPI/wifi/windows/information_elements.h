#pragma once

#include <string_view>

namespace Host {

// How an access point is protected, a sum of Protection, by the information elements of what it
// broadcasts. `isPrivate` is its own word that there is some protection. Elements that are cut off
// or make no sense count for nothing.
unsigned ProtectionOf(std::string_view elements, bool isPrivate);

// Whether they say that WPA, the first version, is spoken there with AES (CCMP): it came with TKIP.
bool TakesAesWithWpa(std::string_view elements);

}  // namespace Host
