#pragma once

#include <string>

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

// The file that lines go to, as UTF-8; empty when they go to none.
LOGHELPER_API std::string LogFilePath();

}  // namespace LogHelper
