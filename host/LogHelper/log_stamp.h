// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/LogHelper/KzLogger.h"

namespace LogHelper {

// The prefix of a line: local time with its offset from UTC, thread, level. Needs no memory
// allocation, lock or system call, so that a signal handler can use it.
class LogStamp {
public:
    using Time = std::chrono::system_clock::time_point;

    LogStamp(Time time, std::chrono::minutes fromUtc, std::uint64_t thread,
             LOG_MESSAGE_LEVEL level);

    std::string_view Text() const { return {text, size}; }

private:
    char text[96];
    std::size_t size;
};

}  // namespace LogHelper
