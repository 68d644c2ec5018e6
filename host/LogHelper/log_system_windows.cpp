#include <system_error>

#include "host/LogHelper/log_system.h"
#include "host/common/paths.h"
#include "host/common/utf8.h"
#include "platform/os.h"

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
    const std::wstring wide = Host::FromUtf8(text);
    DWORD written = 0;
    return WriteConsoleW(console, wide.data(), static_cast<DWORD>(wide.size()), &written,
                         nullptr) != 0;
}

}  // namespace

void PrepareFile(const std::filesystem::path& path) {
    // The user's folders pass on to what is made in them that only he may read it.
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    const HANDLE file =
        CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        ThrowSystemError(path);
    }
    CloseHandle(file);
}

bool IsStillThere(std::FILE*, const std::filesystem::path&) {
    // The system lets nobody move or remove an open file.
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

bool OtherThreadsAreGone() noexcept {
    using Question = BOOLEAN(WINAPI*)();
    static const auto question = reinterpret_cast<Question>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return question != nullptr && question() != 0;
}

}  // namespace LogHelper
