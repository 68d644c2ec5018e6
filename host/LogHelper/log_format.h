#pragma once

namespace LogHelper {

// Local time with its distance from UTC, thread, level, text.
inline constexpr const char* kLinePattern = "%Y-%m-%d %H:%M:%S.%e %z [%t] %-7l %v";

}  // namespace LogHelper
