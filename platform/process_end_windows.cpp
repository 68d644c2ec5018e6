// SPDX-License-Identifier: Apache-2.0

#include "platform/os_calls.h"
#include "platform/process_end.h"

namespace Platform {

bool OtherThreadsAreGone() noexcept {
    using Question = BOOLEAN(WINAPI*)();
    static const auto question = reinterpret_cast<Question>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return question != nullptr && question() != 0;
}

}  // namespace Platform
