// SPDX-License-Identifier: Apache-2.0

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "record_file.h"

namespace ScriptedVendor {

namespace {

// Opens the file so that no other writer can; if another has it open, tries again.
HANDLE OpenAlone(const std::string& path) {
    for (int attempt = 0; attempt < 5000; ++attempt) {
        const HANDLE file = CreateFileA(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                                        OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_SHARING_VIOLATION) {
            return file;
        }
        Sleep(1);
    }
    return INVALID_HANDLE_VALUE;
}

}  // namespace

bool AppendToFile(const std::string& path, const std::string& text) {
    const HANDLE file = OpenAlone(path);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const BOOL done =
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    CloseHandle(file);
    return done != 0 && written == text.size();
}

}  // namespace ScriptedVendor
