#pragma once

#include <spdlog/sinks/rotating_file_sink.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace LogHelper {

// The rotating file. Whatever goes wrong with it stays here: the first failure is told once on
// standard error, and the file is tried again a while later. Its user keeps it to one thread at a
// time.
class LogFile {
public:
    // Lines go to `path` from now on. An empty one is a failure as any other: `whyNone` is told.
    void Use(const std::filesystem::path& path, const std::string& whyNone);
    void UseNone();

    // Writes the line, through to the system.
    void Write(const spdlog::details::log_msg& message);

    const std::filesystem::path& Path() const { return path; }

private:
    using Clock = std::chrono::steady_clock;

    bool TryToWrite(const spdlog::details::log_msg& message);
    void Open();
    void Complain(const std::string& reason);

    bool wanted = false;
    std::filesystem::path path;
    std::string whyNoPath;
    std::optional<spdlog::sinks::rotating_file_sink_st> sink;
    std::FILE* file = nullptr;  // the sink's
    Clock::time_point restsUntil{};
    bool hasComplained = false;
};

}  // namespace LogHelper
