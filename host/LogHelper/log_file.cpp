// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_file.h"

#include <memory>

namespace LogHelper {

namespace {

constexpr std::size_t kLargestFile = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kOlderFiles = 3;
constexpr std::chrono::seconds kRest(1);
constexpr std::chrono::milliseconds kBetweenLooks(100);

// Writes lines unchanged: they are already complete.
class AsTheyAre : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& target) override {
        target.append(message.payload.begin(), message.payload.end());
    }
    std::unique_ptr<formatter> clone() const override { return std::make_unique<AsTheyAre>(); }
};

}  // namespace

void LogFile::Use(const std::filesystem::path& newPath, const std::string& whyNone) {
    UseNone();
    wanted = true;
    path = newPath;
    whyNoPath = whyNone;
}

void LogFile::UseNone() {
    Close();
    wanted = false;
    path.clear();
    restsUntil = {};
    hasComplained = false;
    isFailing = false;
}

void LogFile::Write(std::string_view lines) {
    if (!wanted || Clock::now() < restsUntil) {
        return;
    }
    if (path.empty()) {
        Complain(whyNoPath);
        return;
    }
    const spdlog::details::log_msg message({}, {}, {}, spdlog::level::info,
                                           {lines.data(), lines.size()});
    // Try again at once: the open file may have become unusable, and a new one may work.
    if (!TryToWrite(message) && !TryToWrite(message)) {
        restsUntil = Clock::now() + kRest;
    }
}

bool LogFile::TryToWrite(const spdlog::details::log_msg& message) {
    try {
        if (!IsUsable()) {
            Open();
        }
        sink->log(message);
        isFailing = false;
        return true;
    } catch (const std::exception& error) {
        // After a failure the library's file may be closed and cannot be used.
        Close();
        Complain(error.what());
        return false;
    }
}

// Checks the path only from time to time: a check costs more than a line.
bool LogFile::IsUsable() {
    if (!sink) {
        return false;
    }
    const Clock::time_point now = Clock::now();
    if (now < nextLook) {
        return true;
    }
    nextLook = now + kBetweenLooks;
    return IsStillThere(file, path);
}

void LogFile::Open() {
    Close();
    spdlog::file_event_handlers handlers;
    handlers.before_open = [](const spdlog::filename_t& name) { PrepareFile(name); };
    handlers.after_open = [this](const spdlog::filename_t&, std::FILE* opened) {
        // Write all lines in one piece, and leave nothing to flush.
        std::setvbuf(opened, nullptr, _IONBF, 0);
        file = opened;
        raw = RawFileOf(opened);
    };
    handlers.before_close = [this](const spdlog::filename_t&, std::FILE*) { raw = kNoFile; };
    sink.emplace(path.native(), kLargestFile, kOlderFiles, false, handlers);
    sink->set_formatter(std::make_unique<AsTheyAre>());
    nextLook = Clock::now() + kBetweenLooks;
}

void LogFile::Close() {
    sink.reset();
    raw = kNoFile;
}

void LogFile::Complain(const std::string& reason) {
    isFailing = true;
    if (!hasComplained) {
        hasComplained = true;
        WriteToStandardError("LogHelper: the log file cannot be written: " + reason + "\n");
    }
}

}  // namespace LogHelper
