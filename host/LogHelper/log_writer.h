#pragma once

#include <atomic>
#include <mutex>
#include <string>

#include "host/LogHelper/log_file.h"
#include "host/LogHelper/log_settings.h"
#include "host/LogHelper/terminal_sink.h"

namespace LogHelper {

// Takes lines from all threads and writes each to where the settings say before it returns.
class LogWriter {
public:
    // Made on first use and never destroyed: threads log while the process ends.
    static LogWriter& GetInstance();

    void Configure(const Settings& settings);
    std::string FilePath();
    void Write(LOG_MESSAGE_LEVEL level, const std::wstringstream& line);

private:
    LogWriter();

    std::unique_lock<std::mutex> Lock();
    void UseFile(const Settings& settings);

    std::atomic<LOG_MESSAGE_LEVEL> lowestLevel;
    std::atomic<bool> showSecrets;

    std::mutex mutex;  // guards what follows
    bool toTerminal = false;
    TerminalSink terminal;
    LogFile file;
};

}  // namespace LogHelper
