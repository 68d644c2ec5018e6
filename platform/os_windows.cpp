// SPDX-License-Identifier: Apache-2.0

#include "platform/os_calls.h"

bool KeepLoaded(const void* address) {
    HMODULE library = nullptr;
    return GetModuleHandleExW(
               GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
               static_cast<LPCWSTR>(address), &library) != 0;
}
