// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

// Where in this process's writable memory, that of freed blocks and of returned functions included,
// `text` stands: as it is, and as wide characters. `text` must lie in memory that is not writable,
// as a literal does, lest it finds itself. The end of a pass phrase is what to look for: the
// allocator overwrites the beginning of what it takes back.
std::vector<std::string> PlacesInOwnMemory(std::string_view text);

// The same once there are none, or after a while: threads may be about to end.
std::vector<std::string> PlacesThatStay(std::string_view text);
