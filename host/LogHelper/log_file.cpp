#include "host/LogHelper/log_file.h"

#include "host/LogHelper/log_format.h"
#include "host/LogHelper/log_system.h"

namespace LogHelper {

namespace {

constexpr std::size_t kLargestFile = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kOlderFiles = 3;
constexpr std::chrono::seconds kRest(1);

}  // namespace

void LogFile::Use(const std::filesystem::path& newPath, const std::string& whyNone) {
    UseNone();
    wanted = true;
    path = newPath;
    whyNoPath = whyNone;
}

void LogFile::UseNone() {
    sink.reset();
    wanted = false;
    path.clear();
    restsUntil = {};
    hasComplained = false;
}

void LogFile::Write(const spdlog::details::log_msg& message) {
    if (!wanted || Clock::now() < restsUntil) {
        return;
    }
    if (path.empty()) {
        Complain(whyNoPath);
        return;
    }
    // A second time at once: an open file may have become useless, and a new one may do.
    if (!TryToWrite(message) && !TryToWrite(message)) {
        restsUntil = Clock::now() + kRest;
    }
}

bool LogFile::TryToWrite(const spdlog::details::log_msg& message) {
    try {
        if (!sink || !IsStillThere(file, path)) {
            Open();
        }
        sink->log(message);
        sink->flush();
        return true;
    } catch (const std::exception& error) {
        // The library's file is of no use after a failure: it may be closed.
        sink.reset();
        Complain(error.what());
        return false;
    }
}

void LogFile::Open() {
    sink.reset();
    spdlog::file_event_handlers handlers;
    handlers.before_open = [](const spdlog::filename_t& name) { PrepareFile(name); };
    handlers.after_open = [this](const spdlog::filename_t&, std::FILE* opened) { file = opened; };
    sink.emplace(path.native(), kLargestFile, kOlderFiles, false, handlers);
    sink->set_pattern(kLinePattern);
}

void LogFile::Complain(const std::string& reason) {
    if (!hasComplained) {
        hasComplained = true;
        WriteToStandardError("LogHelper: the log file cannot be written: " + reason + "\n");
    }
}

}  // namespace LogHelper
