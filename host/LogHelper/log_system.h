#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

// What the log asks of the operating system.
namespace LogHelper {

// Makes the file and the folders on its way where they are missing, for this user only. Throws a
// std::exception when the file cannot be written to, or not without a reader's consent.
void PrepareFile(const std::filesystem::path& path);

// Whether `path` still names the open file: it may have been removed, or moved away by another
// process.
bool IsStillThere(std::FILE* file, const std::filesystem::path& path);

// Writes UTF-8 text to standard error; without consequence when that fails. On Linux the text is
// given up when its reader takes nothing for a second.
void WriteToStandardError(std::string_view text) noexcept;

// An open file as the system knows it. Writing to it is safe in a signal handler, and writes
// nothing when there is none.
using RawFile = std::intptr_t;
inline constexpr RawFile kNoFile = -1;
RawFile RawFileOf(std::FILE* file);
// Opens a file for lines to be added to, and makes it and the folders on its way where they are
// missing; kNoFile when that fails. Safe in a signal handler.
RawFile OpenRaw(const std::filesystem::path& path) noexcept;
void WriteRaw(RawFile file, std::string_view text) noexcept;

// The calling thread, as lines name it.
std::uint64_t ThreadId();
// The same, safe in a signal handler.
std::uint64_t ThreadIdInHandler() noexcept;

// Lets a moment pass; safe in a signal handler.
void PauseAMillisecond() noexcept;

// The program's local time at that moment, as its distance from UTC.
std::chrono::minutes DistanceFromUtc(std::chrono::system_clock::time_point time);

// Wakes a thread that waits. What comes while nobody waits is kept.
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

// Runs `body`, which never returns, on a thread of its own that no signal disturbs and that the
// end of the process ends. From then on this library is never unloaded. False when there is no
// thread to be had.
bool StartThread(void (*body)());

// Calls these whenever the process makes a copy of itself: before, and afterwards in each of both.
void AroundFork(void (*before)(), void (*inParent)(), void (*inChild)());

// While it lives, the calling thread is not cancelled: a line is written whole or not at all.
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
