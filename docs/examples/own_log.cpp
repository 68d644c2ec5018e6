// SPDX-License-Identifier: Apache-2.0

// A logger of the application's own: the library LogHelper with nothing but the class that others
// use. It writes warnings and errors to standard error.

#include <cstdio>
#include <mutex>
#include <string>

#include "platform/LogHelper/KzLogger.h"

namespace {

std::mutex& OneAtATime() {
    static std::mutex& mutex = *new std::mutex;  // never destroyed, as the logger
    return mutex;
}

// Of other characters a question mark. A real logger writes UTF-8.
std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t character : text) {
        const bool isPlain = character >= L' ' && character <= L'~';
        narrow += isPlain ? static_cast<char>(character) : '?';
    }
    return narrow;
}

}  // namespace

KzLogger& KzLogger::GetInstance() {
    static KzLogger& logger = *new KzLogger;  // threads log until the process is gone
    return logger;
}

void KzLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    // Lines that hold a pass phrase begin with "pwd" and are of the debug level.
    if (level < LOG_LEVEL_WARNING) {
        return;
    }
    try {
        const std::string text = Narrow(line.str());
        const std::lock_guard lock(OneAtATime());
        std::fprintf(stderr, "log: %s\n", text.c_str());
    } catch (...) {
        // Nothing may be thrown here; the line is lost.
    }
}
