// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "platform/LogHelper/KzLogger.h"

namespace Host {

// Logs one line, with the operation `where` in parentheses. Ignores failures of the logger.
void Report(LOG_MESSAGE_LEVEL level, std::wstring_view text, std::wstring_view where);

}  // namespace Host
