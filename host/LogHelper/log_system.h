// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

// The operating-system functions that the log needs.
namespace LogHelper {

// Creates the file and its missing folders, for this user only. Throws a std::exception when the
// file cannot be written, or is a pipe, whose reader could block the writer.
void PrepareFile(const std::filesystem::path& path);

// Whether `path` still names the open file: another process may have removed or moved it.
bool IsStillThere(std::FILE* file, const std::filesystem::path& path);

// Writes UTF-8 text to standard error; ignores failures. On Linux gives up when the reader takes
// nothing for one second.
void WriteToStandardError(std::string_view text) noexcept;

// The system's handle of an open file. WriteRaw is safe in a signal handler; it does nothing for
// kNoFile.
using RawFile = std::intptr_t;
inline constexpr RawFile kNoFile = -1;
RawFile RawFileOf(std::FILE* file);
// Opens a file for appending, and creates it and its missing folders; kNoFile on failure. Safe in a
// signal handler.
RawFile OpenRaw(const std::filesystem::path& path) noexcept;
void WriteRaw(RawFile file, std::string_view text) noexcept;

// The number of the calling thread, as lines show it.
std::uint64_t ThreadId();
// The same, safe in a signal handler.
std::uint64_t ThreadIdInHandler() noexcept;

// Sleeps about a millisecond. Safe in a signal handler.
void PauseAMillisecond() noexcept;

// The offset of local time from UTC at `time`.
std::chrono::minutes DistanceFromUtc(std::chrono::system_clock::time_point time);

// Wakes a waiting thread. A signal without a waiting thread is kept for the next wait.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    void Signal();
    void Wait();
    void WaitFor(std::chrono::milliseconds time);

private:
    void* system;
};

// Runs `body`, which never returns, on a new thread that blocks all signals and ends with the
// process. From then on this library is never unloaded. False when the thread cannot be started.
bool StartThread(void (*body)());

// Registers functions to call at each fork: before it, and after it in the parent and in the child.
void AroundFork(void (*before)(), void (*inParent)(), void (*inChild)());

// Disables cancellation of the calling thread during its own lifetime, so that a line is written
// completely or not at all.
class NoCancellation {
public:
    NoCancellation();
    ~NoCancellation();
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

private:
    [[maybe_unused]] int previous = 0;
};

}  // namespace LogHelper
