// SPDX-License-Identifier: Apache-2.0

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

// The rotating file. Handles all its errors itself: reports the first on standard error and tries
// the file again later. The caller ensures that only one thread at a time uses it.
class LogFile {
public:
    // Writes lines to `path` from now on. An empty path is an error like any other, reported as
    // `whyNone`.
    void Use(const std::filesystem::path& path, const std::string& whyNone);
    void UseNone();

    // Writes complete lines and flushes them to the system, without lines of other processes in
    // between. Does not rotate between them.
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
    std::FILE* file = nullptr;  // belongs to `sink`
    std::atomic<RawFile> raw{kNoFile};
    Clock::time_point restsUntil{};
    Clock::time_point nextLook{};
    bool hasComplained = false;
    bool isFailing = false;
};

}  // namespace LogHelper
