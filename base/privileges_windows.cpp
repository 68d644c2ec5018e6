// SPDX-License-Identifier: Apache-2.0

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string_view>

#include "base/privileges.h"

namespace Base {

namespace {

// Only administrators can write this key, so a user's program cannot grant itself permission.
bool AdministratorAllowsTheEnvironment() {
    DWORD allowed = 0;
    DWORD size = sizeof allowed;
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\DeviceDiscover", L"ElevatedEnvironment",
                        RRF_RT_REG_DWORD, nullptr, &allowed, &size) == ERROR_SUCCESS &&
           allowed == 1;
}

bool IsElevated() {
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0) {
        return true;
    }
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    const bool isKnown =
        GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != 0;
    CloseHandle(token);
    return !isKnown || elevation.TokenIsElevated != 0;
}

}  // namespace

bool HasMoreRightsThanItsUser() {
    return IsElevated() && !AdministratorAllowsTheEnvironment();
}

NativeText RawEnvironment(const char* name) {
    const std::string_view ascii = name;
    const std::wstring wideName(ascii.begin(), ascii.end());
    std::wstring value(MAX_PATH, L'\0');
    DWORD length =
        GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
    while (length > value.size()) {
        value.resize(length);
        length = GetEnvironmentVariableW(wideName.c_str(), value.data(), length);
    }
    value.resize(length);
    return value;
}

}  // namespace Base
