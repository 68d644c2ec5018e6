// SPDX-License-Identifier: Apache-2.0

#include "app/program/log_control.h"

#include <array>

#include "app/library/host_function.h"
#include "platform/LogHelper/LogControl.h"

namespace App {

namespace {

template <class Function>
Function* LogFunction(const char* name) {
    return reinterpret_cast<Function*>(HostFunction("LogHelper", name));
}

// Each is null where the library lacks it.
struct LogControl {
    decltype(LogHelperConfigure)* configure =
        LogFunction<decltype(LogHelperConfigure)>("LogHelperConfigure");
    decltype(LogHelperFilePath)* filePath =
        LogFunction<decltype(LogHelperFilePath)>("LogHelperFilePath");
    decltype(LogHelperFlush)* flush = LogFunction<decltype(LogHelperFlush)>("LogHelperFlush");
    decltype(LogHelperWriteInSignalHandler)* writeInSignalHandler =
        LogFunction<decltype(LogHelperWriteInSignalHandler)>("LogHelperWriteInSignalHandler");
};

const LogControl& Log() {
    static const LogControl log;
    return log;
}

}  // namespace

void FindLogControl() {
    Log();
}

bool ConfigureLog(LOG_MESSAGE_LEVEL level, bool toTerminal, bool toFile, const std::string& file) {
    return Log().configure != nullptr &&
           Log().configure(level, toTerminal ? 1 : 0, toFile ? 1 : 0, file.c_str()) != 0;
}

std::optional<std::string> LogFilePath() {
    if (Log().filePath == nullptr) {
        return std::nullopt;
    }
    FlushLog();
    constexpr std::size_t longestPath = 4096;
    std::array<char, longestPath + 1> path{};
    return Log().filePath(path.data(), path.size()) == 0 ? std::string() : path.data();
}

void FlushLog() {
    if (Log().flush != nullptr) {
        Log().flush();
    }
}

void WriteToLogInSignalHandler(std::string_view text) noexcept {
    if (Log().writeInSignalHandler != nullptr) {
        Log().writeInSignalHandler(text.data(), text.size());
    }
}

}  // namespace App
