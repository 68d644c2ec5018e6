// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace App {

// Creates the log file, readable only by the user, or checks that it can be written. Never blocks,
// whatever kind of file it is. Returns why it cannot be written; empty when it can.
std::string PrepareLogFile(const std::string& file);

}  // namespace App
