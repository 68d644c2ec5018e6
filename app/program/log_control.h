// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/LogHelper/KzLogger.h"

namespace App {

// The log of the library LogHelper. A replacement of the library may have none of these functions.

// Looks the functions up. Called before the first crash can be reported.
void FindLogControl();

// False when the library cannot be configured. An empty `file` is the library's own choice.
bool ConfigureLog(LOG_MESSAGE_LEVEL level, bool toTerminal, bool toFile, const std::string& file);

// The file with all lines so far, as UTF-8; empty when there is none. Nothing when the library does
// not tell.
std::optional<std::string> LogFilePath();

void FlushLog();

void WriteToLogInSignalHandler(std::string_view text) noexcept;

}  // namespace App
