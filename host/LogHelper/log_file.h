#pragma once

#include <spdlog/sinks/rotating_file_sink.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/LogHelper/log_system.h"

namespace LogHelper {

// The rotating file. Whatever goes wrong with it stays here: the first failure is told once on
// standard error, and the file is tried again a while later. Its user keeps it to one thread at a
// time.
class LogFile {
public:
    // Lines go to `path` from now on. An empty one is a failure as any other: `whyNone` is told.
    void Use(const std::filesystem::path& path, const std::string& whyNone);
    void UseNone();

    // Writes whole lines, through to the system, with nothing of other processes between them.
    // There is no rotation within them.
    void Write(std::string_view lines);

    const std::filesystem::path& Path() const { return path; }

    // Whether the latest lines could not be written.
    bool IsFailing() const { return isFailing; }

    // The open file, for a signal handler; kNoFile when there is none.
    RawFile Raw() const { return raw; }

private:
    using Clock = std::chrono::steady_clock;

    bool TryToWrite(const spdlog::details::log_msg& message);
    bool IsUsable();
    void Open();
    void Close();
    void Complain(const std::string& reason);

    bool wanted = false;
    std::filesystem::path path;
    std::string whyNoPath;
    std::optional<spdlog::sinks::rotating_file_sink_st> sink;
    std::FILE* file = nullptr;  // the sink's
    std::atomic<RawFile> raw{kNoFile};
    Clock::time_point restsUntil{};
    Clock::time_point nextLook{};
    bool hasComplained = false;
    bool isFailing = false;
};

}  // namespace LogHelper
