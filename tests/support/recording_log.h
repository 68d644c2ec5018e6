// SPDX-License-Identifier: Apache-2.0

#pragma once

// The recording LogHelper: keeps every line that the broker hands to the logger.

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/LogHelper/KzLogger.h"

namespace RecordingLog {

struct Line {
    int level;
    std::wstring text;
    std::thread::id thread;
};

// All lines so far, in the order in which they came.
LOGHELPER_API std::vector<Line> Lines();
LOGHELPER_API void Clear();

// How often KzLogger::GetInstance has been asked for.
LOGHELPER_API unsigned long InstanceRequests();

// What was wrong with the streams that came: none should be anything but fresh, writable at its end
// and of default format.
LOGHELPER_API std::vector<std::string> Complaints();

// Called for each line, after it has been recorded, on the thread that logs; may throw or call the
// broker. An empty function ends it.
LOGHELPER_API void OnLine(std::function<void(const Line&)> hook);

// Waits until `done` holds for the lines so far; false when that takes longer than `milliseconds`.
LOGHELPER_API bool WaitUntil(const std::function<bool(const std::vector<Line>&)>& done,
                             unsigned milliseconds);

// Calls `work` when this library itself is at its end: the broker, which uses it, is then gone.
LOGHELPER_API void AtItsEnd(void (*work)());

// Keep nothing from now on: for tests that log more than fits.
LOGHELPER_API void Discard();

// From now on lines are not even read: no copy of one is made.
LOGHELPER_API void Ignore();

}  // namespace RecordingLog
