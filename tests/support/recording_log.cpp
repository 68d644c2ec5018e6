// SPDX-License-Identifier: Apache-2.0

#include "tests/support/recording_log.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <ios>
#include <locale>
#include <mutex>

namespace {

struct Record {
    std::mutex mutex;
    std::condition_variable added;
    std::vector<RecordingLog::Line> lines;
    std::vector<std::string> complaints;
    std::function<void(const RecordingLog::Line&)> hook;
    bool discards = false;
    std::atomic<bool> ignores = false;
};

std::atomic<unsigned long> instanceRequests{0};

// Made before any of the broker's objects, and so destroyed after all of them.
struct LastWords {
    ~LastWords() {
        if (work != nullptr) {
            work();
        }
    }
    void (*work)() = nullptr;
};
LastWords lastWords;

// Never destroyed: scan threads log while the process ends.
Record& TheRecord() {
    static Record& record = *new Record;
    return record;
}

// The complaint about a stream, or nothing.
std::string ComplaintAbout(std::wstringstream& stream, const std::wstring& text) {
    const std::wstringstream fresh;
    if (!stream.good()) {
        return "the stream is not good";
    }
    if (text.empty()) {
        return "the line is empty";
    }
    if (stream.tellp() != std::streampos(static_cast<std::streamoff>(text.size()))) {
        return "the stream is not positioned at its end";
    }
    if (stream.tellg() != std::streampos(0)) {
        return "the stream has been read from";
    }
    if (stream.flags() != fresh.flags() || stream.precision() != fresh.precision() ||
        stream.width() != 0 || stream.fill() != fresh.fill() || stream.getloc() != std::locale()) {
        return "the stream's format is not that of a fresh one";
    }
    return {};
}

}  // namespace

namespace RecordingLog {

std::vector<Line> Lines() {
    Record& record = TheRecord();
    const std::lock_guard lock(record.mutex);
    return record.lines;
}

void Clear() {
    Record& record = TheRecord();
    const std::lock_guard lock(record.mutex);
    record.lines.clear();
}

unsigned long InstanceRequests() {
    return instanceRequests;
}

std::vector<std::string> Complaints() {
    Record& record = TheRecord();
    const std::lock_guard lock(record.mutex);
    return record.complaints;
}

void OnLine(std::function<void(const Line&)> hook) {
    Record& record = TheRecord();
    const std::lock_guard lock(record.mutex);
    record.hook = std::move(hook);
}

bool WaitUntil(const std::function<bool(const std::vector<Line>&)>& done, unsigned milliseconds) {
    Record& record = TheRecord();
    std::unique_lock lock(record.mutex);
    return record.added.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                 [&] { return done(record.lines); });
}

void AtItsEnd(void (*work)()) {
    lastWords.work = work;
}

void Discard() {
    Record& record = TheRecord();
    const std::lock_guard lock(record.mutex);
    record.discards = true;
}

void Ignore() {
    TheRecord().ignores = true;
}

}  // namespace RecordingLog

KzLogger& KzLogger::GetInstance() {
    ++instanceRequests;
    static KzLogger& logger = *new KzLogger;
    return logger;
}

void KzLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& stream) {
    if (TheRecord().ignores) {
        return;
    }
    const RecordingLog::Line line{level, stream.str(), std::this_thread::get_id()};
    const std::string complaint = ComplaintAbout(stream, line.text);
    Record& record = TheRecord();
    std::unique_lock lock(record.mutex);
    if (!complaint.empty()) {
        record.complaints.push_back(complaint);
    }
    if (!record.discards) {
        record.lines.push_back(line);
        record.added.notify_all();
    }
    const auto hook = record.hook;
    lock.unlock();
    if (hook) {
        hook(line);
    }
}
