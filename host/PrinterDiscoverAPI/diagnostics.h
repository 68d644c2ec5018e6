#pragma once

#include <string_view>

#include "platform/LogHelper/KzLogger.h"

namespace Host {

// Logs one line, with the operation it comes from in parentheses. A logger that fails does not fail
// its caller.
void Report(LOG_MESSAGE_LEVEL level, std::wstring_view text, std::wstring_view where);

}  // namespace Host
