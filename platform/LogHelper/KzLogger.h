// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sstream>

#include "platform/compiler.h"

#if defined(LOGHELPER_BUILDING)
#define LOGHELPER_API PLATFORM_EXPORT
#else
#define LOGHELPER_API PLATFORM_IMPORT
#endif

// The importance of a line, from least to most. The broker writes only levels 1, 3 and 4.
enum LOG_MESSAGE_LEVEL {
    LOG_LEVEL_TRACE = 0,
    // Entry into an operation and its arguments, relayed reports, registrations, successful vendor
    // calls.
    LOG_LEVEL_DEBUG = 1,
    LOG_LEVEL_INFO = 2,
    // Details that are not failures.
    LOG_LEVEL_WARNING = 3,
    LOG_LEVEL_ERROR = 4
};

// The logger of the application's logging library, LogHelper. A replacement of the library provides
// this class.
class LOGHELPER_API KzLogger {
public:
    // Returns the process-wide logger. The broker calls this for every line. The logger must stay
    // usable until the last thread of the process has ended: vendor threads log while static
    // destructors run.
    static KzLogger& GetInstance();

    // Logs one composed line. `line` belongs to the caller and lives only during the call. Called
    // from any thread, from several at once. Must not throw; the broker discards exceptions. Must
    // not call the broker: the broker also logs while it holds a lock or loads modules.
    void Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line);

    KzLogger(const KzLogger&) = delete;
    KzLogger& operator=(const KzLogger&) = delete;

private:
    KzLogger() = default;
    ~KzLogger() = default;
};
