// SPDX-License-Identifier: Apache-2.0

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

// Replaces the settings for all later lines. Until the first call the defaults apply. Safe from any
// thread.
LOGHELPER_API void Configure(const Settings& settings);

// The file that lines go to, as UTF-8; empty when they go to none, also because the latest could
// not be written.
LOGHELPER_API std::string LogFilePath();

// Returns when all lines so far have been written to the system. Lines of the error level, the end
// of the process and Configure flush as well; a program that ends by _Exit or the like must call
// this first. Waits for a slow disk.
LOGHELPER_API void Flush();

// For the handler of a signal that ends the process: writes the queued lines, and `text` as a line
// of the error level, to the file, and opens the file if necessary. Safe in a signal handler on the
// crashed thread, whatever it was doing; takes at most 0.1 seconds longer than the disk needs. If
// the crash interrupted a write, some lines may be written twice. Does nothing in a program that
// has used no other function of this library. Control characters in `text` are written as '?'; a
// long text is truncated after 400 bytes.
LOGHELPER_API void WriteInSignalHandler(std::string_view text) noexcept;

}  // namespace LogHelper
