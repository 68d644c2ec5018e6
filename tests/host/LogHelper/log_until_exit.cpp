// SPDX-License-Identifier: Apache-2.0

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "host/LogHelper/log_settings.h"
#include "platform/os_calls.h"
#include "tests/host/LogHelper/exit_logger.h"

namespace {

void LogText(const wchar_t* text) {
    std::wstringstream line;
    line << text;
    KzLogger::GetInstance().Log(LOG_LEVEL_DEBUG, line);
}

struct LogsInItsDestructor {
    ~LogsInItsDestructor() {
        LogText(L"program's destructor");
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        LogText(L"program's last line");
    }
};
LogsInItsDestructor instance;

}  // namespace

// log_until_exit FILE MILLISECONDS
int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    LogHelper::Settings settings;
    settings.filePath = arguments[1];
    LogHelper::Configure(settings);
    LogAtExit();
    for (int thread = 0; thread < 8; ++thread) {
        std::thread([] {
            // No more than the log takes: of too many lines it drops some.
            for (int line = 1;; ++line) {
                LogText(L"thread");
                if (line % 10 == 0) {
                    Sleep(1);
                }
            }
        }).detach();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(arguments[2])));
    return 0;
}
