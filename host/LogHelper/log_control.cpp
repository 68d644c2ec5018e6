// SPDX-License-Identifier: Apache-2.0

#include "platform/LogHelper/LogControl.h"

#include "host/LogHelper/log_settings.h"
#include "platform/compiler.h"

int LogHelperConfigure(int level, int toTerminal, int toFile, const char* filePath) {
    try {
        LogHelper::Settings settings;
        settings.level = static_cast<LOG_MESSAGE_LEVEL>(level);
        settings.terminal = toTerminal != 0;
        settings.file = toFile != 0;
        settings.filePath = filePath;
        LogHelper::Configure(settings);
        return 1;
    }
    PLATFORM_CATCH_ALL {
        return 0;
    }
}

std::size_t LogHelperFilePath(char* text, std::size_t size) {
    std::string path;
    try {
        path = LogHelper::LogFilePath();
    }
    PLATFORM_CATCH_ALL {
        path.clear();
    }
    if (size != 0) {
        text[path.copy(text, size - 1)] = '\0';
    }
    return path.size();
}

void LogHelperFlush() {
    try {
        LogHelper::Flush();
    }
    PLATFORM_CATCH_ALL {
        return;
    }
}

void LogHelperWriteInSignalHandler(const char* text, std::size_t length) {
    LogHelper::WriteInSignalHandler({text, length});
}
