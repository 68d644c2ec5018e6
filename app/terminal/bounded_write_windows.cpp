// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/bounded_write_windows.h"

namespace App {

namespace {

bool SetMode(HANDLE pipe, DWORD mode) {
    return SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr) != 0;
}

}  // namespace

void WriteInTime(HANDLE stream, std::string_view text) {
    constexpr ULONGLONG patience = 1000;
    constexpr DWORD tick = 20;
    const bool isPipe = SetMode(stream, PIPE_NOWAIT);
    const ULONGLONG end = GetTickCount64() + patience;
    for (;;) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(text.size());
        if (WriteFile(stream, text.data(), size, &written, nullptr) == 0) {
            break;
        }
        text.remove_prefix(written);
        if (text.empty() || GetTickCount64() >= end) {
            break;
        }
        Sleep(tick);
    }
    if (isPipe) {
        SetMode(stream, PIPE_WAIT);  // for other processes that write there
    }
}

}  // namespace App
