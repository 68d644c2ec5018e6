#include "host/LogHelper/log_writer.h"

#include <algorithm>

#include "host/LogHelper/log_format.h"
#include "host/LogHelper/log_system.h"
#include "host/LogHelper/log_text.h"
#include "host/common/paths.h"
#include "host/common/user_folders.h"

namespace LogHelper {

namespace {

constexpr const char* kFileName = "DeviceDiscover.log";

spdlog::level::level_enum SpdlogLevel(LOG_MESSAGE_LEVEL level) {
    static_assert(LOG_LEVEL_TRACE == static_cast<int>(spdlog::level::trace));
    static_assert(LOG_LEVEL_ERROR == static_cast<int>(spdlog::level::err));
    return static_cast<spdlog::level::level_enum>(std::clamp(static_cast<int>(level),
                                                             static_cast<int>(LOG_LEVEL_TRACE),
                                                             static_cast<int>(LOG_LEVEL_ERROR)));
}

}  // namespace

LogWriter& LogWriter::GetInstance() {
    static LogWriter& instance = *new LogWriter;
    return instance;
}

LogWriter::LogWriter() {
    terminal.set_pattern(kLinePattern);
    Configure({});
}

// On Windows a thread that held the lock may be gone for good by the time the last lines come.
std::unique_lock<std::mutex> LogWriter::Lock() {
    return OtherThreadsAreGone() ? std::unique_lock(mutex, std::try_to_lock)
                                 : std::unique_lock(mutex);
}

void LogWriter::Configure(const Settings& settings) {
    const auto lock = Lock();
    if (lock) {
        lowestLevel = settings.level;
        showSecrets = settings.showSecrets;
        toTerminal = settings.terminal;
        UseFile(settings);
    }
}

void LogWriter::UseFile(const Settings& settings) {
    if (!settings.file) {
        file.UseNone();
    } else if (!settings.filePath.empty()) {
        // The file stays the same wherever the program goes.
        file.Use(Host::AbsolutePath(Host::PathFromUtf8(settings.filePath)), {});
    } else {
        const auto [folder, reason] = Host::UserStateFolder();
        file.Use(folder.empty() ? folder : folder / kFileName,
                 "there is no folder for it, " + reason);
    }
}

std::string LogWriter::FilePath() {
    const auto lock = Lock();
    return lock ? Host::PathToUtf8(file.Path()) : std::string();
}

void LogWriter::Write(LOG_MESSAGE_LEVEL level, const std::wstringstream& line) {
    if (level < lowestLevel) {
        return;
    }
    std::wstring wide = line.str();
    if (!showSecrets) {
        MaskSecrets(wide);
    }
    const std::string text = OneLine(wide);
    const spdlog::details::log_msg message({}, {}, SpdlogLevel(level), text);
    const auto lock = Lock();
    if (!lock) {
        return;
    }
    if (toTerminal) {
        terminal.log(message);
    }
    file.Write(message);
}

}  // namespace LogHelper
