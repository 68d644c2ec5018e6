// SPDX-License-Identifier: Apache-2.0

#include <io.h>
#include <process.h>

#include <ctime>
#include <system_error>

#include "base/text/utf8.h"
#include "host/LogHelper/log_system.h"
#include "host/common/paths.h"
#include "platform/os_calls.h"

namespace LogHelper {

namespace {

[[noreturn]] void ThrowSystemError(const std::filesystem::path& path) {
    const auto error = static_cast<int>(GetLastError());
    throw std::system_error(error, std::system_category(), Host::PathToUtf8(path));
}

bool WriteToConsole(HANDLE console, std::string_view text) {
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode) == 0) {
        return false;
    }
    const std::wstring wide = Base::FromUtf8(text);
    DWORD written = 0;
    return WriteConsoleW(console, wide.data(), static_cast<DWORD>(wide.size()), &written,
                         nullptr) != 0;
}

unsigned __stdcall RunBody(void* body) {
    reinterpret_cast<void (*)()>(body)();
    return 0;
}

// Converts a local time as if it were UTC.
std::chrono::system_clock::time_point AsUtc(const std::tm& clock) {
    using namespace std::chrono;
    constexpr int firstYear = 1900;
    const year_month_day date(year(clock.tm_year + firstYear),
                              month(static_cast<unsigned>(clock.tm_mon + 1)),
                              day(static_cast<unsigned>(clock.tm_mday)));
    return sys_days(date) + hours(clock.tm_hour) + minutes(clock.tm_min) + seconds(clock.tm_sec);
}

// Creates the missing folders of the path; ignores failures. They inherit from the user's folders
// that only the user may read them.
void MakeFoldersWithoutMemory(const wchar_t* path) noexcept {
    constexpr std::size_t longestPath = 32767;
    static wchar_t folder[longestPath + 1];
    for (std::size_t at = 0; at < longestPath && path[at] != L'\0'; ++at) {
        if ((path[at] == L'\\' || path[at] == L'/') && at != 0) {
            folder[at] = L'\0';
            CreateDirectoryW(folder, nullptr);
        }
        folder[at] = path[at];
    }
}

}  // namespace

void PrepareFile(const std::filesystem::path& path) {
    const RawFile file = OpenRaw(path);
    if (file == kNoFile) {
        ThrowSystemError(path);
    }
    CloseHandle(reinterpret_cast<HANDLE>(file));
}

bool IsStillThere(std::FILE*, const std::filesystem::path&) {
    // On Windows an open file cannot be moved or removed.
    return true;
}

void WriteToStandardError(std::string_view text) noexcept {
    const HANDLE output = GetStdHandle(STD_ERROR_HANDLE);
    try {
        if (WriteToConsole(output, text)) {
            return;
        }
    } catch (...) {
        return;
    }
    DWORD written = 0;
    WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

RawFile RawFileOf(std::FILE* file) {
    return _get_osfhandle(_fileno(file));
}

RawFile OpenRaw(const std::filesystem::path& path) noexcept {
    static_assert(kNoFile == -1, "INVALID_HANDLE_VALUE as a number");
    const auto openFile = [&path] {
        return reinterpret_cast<RawFile>(CreateFileW(path.c_str(), FILE_APPEND_DATA,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                     OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    const RawFile file = openFile();
    if (file != kNoFile || GetLastError() != ERROR_PATH_NOT_FOUND) {
        return file;
    }
    MakeFoldersWithoutMemory(path.c_str());
    return openFile();
}

// The C library's file is positioned at the end, and so is the handle under it.
void WriteRaw(RawFile file, std::string_view text) noexcept {
    const auto handle = reinterpret_cast<HANDLE>(file);
    SetFilePointer(handle, 0, nullptr, FILE_END);
    DWORD written = 0;
    WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

std::uint64_t ThreadId() {
    return GetCurrentThreadId();
}

std::uint64_t ThreadIdInHandler() noexcept {
    return GetCurrentThreadId();
}

void PauseAMillisecond() noexcept {
    Sleep(1);
}

std::chrono::minutes DistanceFromUtc(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_s(&local, &seconds);
    return std::chrono::duration_cast<std::chrono::minutes>(
        AsUtc(local) - std::chrono::system_clock::from_time_t(seconds));
}

WakeUp::WakeUp() : system(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

WakeUp::~WakeUp() {
    CloseHandle(system);
}

void WakeUp::Signal() {
    SetEvent(system);
}

void WakeUp::Wait() {
    WaitForSingleObject(system, INFINITE);
}

void WakeUp::WaitFor(std::chrono::milliseconds time) {
    WaitForSingleObject(system, static_cast<DWORD>(time.count()));
}

bool StartThread(void (*body)()) {
    KeepLoaded(reinterpret_cast<const void*>(&RunBody));
    const auto thread = reinterpret_cast<HANDLE>(
        _beginthreadex(nullptr, 0, RunBody, reinterpret_cast<void*>(body), 0, nullptr));
    if (thread == nullptr) {
        return false;
    }
    CloseHandle(thread);
    return true;
}

// Windows has no fork and no thread cancellation.
void AroundFork(void (*)(), void (*)(), void (*)()) {}
NoCancellation::NoCancellation() {}
NoCancellation::~NoCancellation() {}

}  // namespace LogHelper
