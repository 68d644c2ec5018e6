// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "platform/LogHelper/KzLogger.h"
#include "tests/support/recording_log.h"

namespace HostTest {

// One logged line: its level, and what its text contains.
MATCHER_P2(IsLine, level, part, "") {
    return arg.level == level && arg.text.find(part) != std::wstring::npos;
}

// The lines that were logged since the last time.
inline std::vector<RecordingLog::Line> TakeLines() {
    std::vector<RecordingLog::Line> lines = RecordingLog::Lines();
    RecordingLog::Clear();
    return lines;
}

}  // namespace HostTest

namespace RecordingLog {

inline void PrintTo(const Line& line, std::ostream* out) {
    *out << "level " << line.level << ": " << testing::PrintToString(line.text);
}

}  // namespace RecordingLog
