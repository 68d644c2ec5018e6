// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_settings.h"

#include "host/LogHelper/log_writer.h"

namespace LogHelper {

void Configure(const Settings& settings) {
    LogWriter::GetInstance().Configure(settings);
}

std::string LogFilePath() {
    return LogWriter::GetInstance().FilePath();
}

void Flush() {
    LogWriter::GetInstance().Flush();
}

void WriteInSignalHandler(std::string_view text) noexcept {
    LogWriter::WriteInSignalHandler(text);
}

}  // namespace LogHelper
