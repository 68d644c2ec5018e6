// SPDX-License-Identifier: Apache-2.0

#pragma once

// The entries of an announcement's TXT record.

#include <map>
#include <string>
#include <string_view>

namespace Driverless {

// Adds a "key=value" whose key is used; the first entry of a key counts, and keys get lower case.
// Entries of other keys may be long and are dropped.
void AddTxtEntry(std::map<std::string, std::string>& entries, std::string_view text);

}  // namespace Driverless
