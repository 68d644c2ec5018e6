#pragma once

#include <string>
#include <string_view>

#include "platform/LogHelper/KzLogger.h"

namespace LogHelper {

struct Settings {
    LOG_MESSAGE_LEVEL level = LOG_LEVEL_DEBUG;  // lines below it are dropped
    bool terminal = false;                      // also to standard error
    bool file = true;
    std::string filePath;      // UTF-8; empty: DeviceDiscover.log in the user's state folder
    bool showSecrets = false;  // pass phrases in clear
};

// Replaces the settings for all lines to come. Without a call the defaults hold. Safe from any
// thread.
LOGHELPER_API void Configure(const Settings& settings);

// The file that lines go to, as UTF-8; empty when they go to none, also because the latest could
// not be written.
LOGHELPER_API std::string LogFilePath();

// Returns once all lines so far have been handed to the system. Lines of the error level, the end
// of the process and Configure do the same; a program that ends by _Exit or the like calls this
// before. Waits for a disk that is slow.
LOGHELPER_API void Flush();

// For the handler of a signal that ends the process: writes the lines that still wait, and `text`
// as a line of the error level, to the file, which it opens if need be. Safe in a signal handler,
// on the thread that crashed, whatever it was doing; takes at most a tenth of a second more than
// the disk does. When the crash was in the midst of a write, some lines may be written twice. Does
// nothing in a program that has used no other function of this library. Control characters in
// `text` come out as '?'; of a long text the first 400 bytes are written.
LOGHELPER_API void WriteInSignalHandler(std::string_view text) noexcept;

}  // namespace LogHelper
