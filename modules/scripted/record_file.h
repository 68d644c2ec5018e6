// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace ScriptedVendor {

// Appends `text` to the file in one piece, even when other modules and processes append at the same
// time. False when the file cannot be written.
bool AppendToFile(const std::string& path, const std::string& text);

}  // namespace ScriptedVendor
