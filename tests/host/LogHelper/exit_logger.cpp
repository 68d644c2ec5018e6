// SPDX-License-Identifier: Apache-2.0

#define EXIT_LOGGER_BUILDING
#include "tests/host/LogHelper/exit_logger.h"

#include "platform/LogHelper/KzLogger.h"

namespace {

struct LogsInItsDestructor {
    ~LogsInItsDestructor() {
        for (int line = 0; line < 10; ++line) {
            std::wstringstream text;
            text << L"library's destructor " << line;
            KzLogger::GetInstance().Log(LOG_LEVEL_ERROR, text);
        }
    }
};

}  // namespace

void LogAtExit() {
    static LogsInItsDestructor instance;
}
