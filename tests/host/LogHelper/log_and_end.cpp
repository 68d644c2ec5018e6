// SPDX-License-Identifier: Apache-2.0

// log_and_end FILE HOW: logs an error and many lines that need not be in the file yet, and ends.
//
// HOW: crash-at-once, with a handler, before the first line is in the file; exit, by its main
// function; crash, by a signal; crash-after-error, right after a last error; crash-with-handler,
// with a handler that has the log written; crash-among-threads, the same while other threads log.

#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include "host/LogHelper/log_settings.h"

namespace {

constexpr int kLines = 500;

void LogText(LOG_MESSAGE_LEVEL level, const std::wstring& text) {
    std::wstringstream line;
    line << text;
    KzLogger::GetInstance().Log(level, line);
}

void OnCrash(int) {
    LogHelper::WriteInSignalHandler("the last\nwords");
    std::_Exit(3);
}

void LogForGood() {
    for (;;) {
        LogText(LOG_LEVEL_DEBUG, L"another thread");
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    const std::string how = arguments[2];
    LogHelper::Settings settings;
    settings.filePath = arguments[1];
    LogHelper::Configure(settings);
    if (how == "crash-at-once") {
        std::signal(SIGSEGV, OnCrash);
        LogText(LOG_LEVEL_DEBUG, L"first");
        std::raise(SIGSEGV);
    }
    LogText(LOG_LEVEL_ERROR, L"first");
    if (how == "crash-among-threads") {
        std::thread(LogForGood).detach();
        std::thread(LogForGood).detach();
    }
    for (int line = 0; line < kLines; ++line) {
        LogText(LOG_LEVEL_DEBUG, L"line " + std::to_wstring(line));
    }
    if (how == "crash-after-error") {
        LogText(LOG_LEVEL_ERROR, L"last");
    }
    if (how == "crash-with-handler" || how == "crash-among-threads") {
        std::signal(SIGSEGV, OnCrash);
    }
    if (how != "exit") {
        std::raise(SIGSEGV);
    }
    return 0;
}
