#pragma once

#include <sstream>

#include "platform/compiler.h"

#if defined(LOGHELPER_BUILDING)
#define LOGHELPER_API PLATFORM_EXPORT
#else
#define LOGHELPER_API PLATFORM_IMPORT
#endif

// How much a line matters, from least to most. The broker writes the levels 1, 3 and 4 only.
enum LOG_MESSAGE_LEVEL {
    LOG_LEVEL_TRACE = 0,
    // Entry into an operation and its arguments, relays, registrations, vendor calls that
    // succeeded.
    LOG_LEVEL_DEBUG = 1,
    LOG_LEVEL_INFO = 2,
    // Details that are not failures.
    LOG_LEVEL_WARNING = 3,
    LOG_LEVEL_ERROR = 4
};

// The application's logging library, LogHelper. Whoever replaces it provides this class.
class LOGHELPER_API KzLogger {
public:
    // The process-wide logger. The broker asks anew for every line. It must stay usable until the
    // last thread of the process has ended: vendor threads log while static destructors run.
    static KzLogger& GetInstance();

    // Takes one composed line; `line` belongs to the caller and lives only during the call. Called
    // from any thread, several at once. Must not throw; what it throws all the same the broker
    // drops. Must not call the broker: lines also come while the broker holds a lock or binds.
    void Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line);

    KzLogger(const KzLogger&) = delete;
    KzLogger& operator=(const KzLogger&) = delete;

private:
    KzLogger() = default;
    ~KzLogger() = default;
};
