// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_writer.h"
#include "platform/LogHelper/KzLogger.h"
#include "platform/compiler.h"

KzLogger& KzLogger::GetInstance() {
    static KzLogger& instance = *new KzLogger;
    return instance;
}

void KzLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    try {
        LogHelper::LogWriter::GetInstance().Write(level, line);
    }
    PLATFORM_CATCH_ALL {
        // Out of memory: the line is lost, the caller goes on.
        return;
    }
}
