// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <string_view>

#include "host/LogHelper/line_queue.h"
#include "host/LogHelper/log_file.h"
#include "host/LogHelper/log_settings.h"
#include "host/LogHelper/log_stamp.h"
#include "host/LogHelper/log_system.h"

namespace LogHelper {

// Takes lines from all threads. Composes and queues each line on the calling thread; the writer's
// own thread writes the lines to the file. Lines for the terminal are written at once.
class LogWriter {
public:
    // Created on first use and never destroyed: threads log while the process ends.
    static LogWriter& GetInstance();

    void Configure(const Settings& settings);
    std::string FilePath();
    void Write(LOG_MESSAGE_LEVEL level, const std::wstringstream& line) {
        if (level >= lowestLevel) {
            WriteLine(level, line.view());
        }
    }

    // Returns when all lines so far have been written to the system.
    void Flush();

    // For the end of the process: writes the queued lines to the system, and each later line at
    // once.
    static void EndQueueing();

    static void WriteInSignalHandler(std::string_view text) noexcept;

private:
    using Lock = std::unique_lock<std::mutex>;

    LogWriter();

    void UseFile(const Settings& settings);
    void WriteLine(LOG_MESSAGE_LEVEL level, std::wstring_view line);
    LogStamp Stamp(LOG_MESSAGE_LEVEL level);
    std::chrono::minutes FromUtc(std::chrono::system_clock::time_point now);

    void Queue(std::string_view line, bool isUrgent);
    bool Push(std::string_view line);
    void PushWithPatience(std::string_view line);
    void PushTheLost();
    bool HasThread();
    void RunThread();

    void Drain(std::string_view next = {});
    void DrainAlone(std::string_view next);
    LineQueue::Buffer& TurnQueue(std::string_view next);
    void WriteWaitingRaw(RawFile raw) noexcept;
    void Rescue(std::string_view text) noexcept;
    RawFile FileInHandler() noexcept;
    void WriteLastLine(RawFile raw, std::string_view text) noexcept;

    void BeforeFork();
    void InParent();
    void InChild();

    std::atomic<int> lowestLevel;
    std::atomic<bool> showSecrets;
    std::atomic<bool> toTerminal = false;
    std::atomic<bool> toFile = false;
    std::atomic<bool> isSynchronous = false;
    std::atomic<std::int64_t> secondAndDistance;  // see DistanceIn

    std::unique_ptr<WakeUp> wakeUp;
    std::atomic<bool> hasThread = false;
    bool isAnnounced = false;  // the thread was told of the queued lines; guarded by queueMutex
    std::atomic<std::uint64_t> lost{0};
    std::atomic<bool> isStuck = false;  // the file takes nothing: no thread waits for room
    std::atomic<bool> isFileBusy = false;
    std::atomic<bool> isRescuing = false;  // a signal handler writes: no other thread may

    // Lock in this order.
    std::mutex terminalMutex;  // keeps the same order on the terminal and in the file
    std::mutex fileMutex;      // guards `file`, and the buffer from the last turn of `queue`
    std::mutex queueMutex;     // guards the rest of `queue`, and the start of the thread

    LogFile file;
    LineQueue queue;
    // Where lines go after the writing thread was terminated during a write.
    RawFile alone = kNoFile;
};

}  // namespace LogHelper
