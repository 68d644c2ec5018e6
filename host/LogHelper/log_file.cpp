#include "host/LogHelper/log_file.h"

#include <memory>

namespace LogHelper {

namespace {

constexpr std::size_t kLargestFile = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kOlderFiles = 3;
constexpr std::chrono::seconds kRest(1);
constexpr std::chrono::milliseconds kBetweenLooks(100);

// The lines are complete when they come here.
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
    // A second time at once: an open file may have become useless, and a new one may do.
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
        // The library's file is of no use after a failure: it may be closed.
        Close();
        Complain(error.what());
        return false;
    }
}

// The path is looked at now and then only: that costs more than a line.
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
        // All lines of one write in one piece, and nothing that is left to flush.
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
