// SPDX-License-Identifier: Apache-2.0

#include "platform/os_calls.h"
#include "platform/process_end.h"

// No header declares it. Linked, not looked up at run time: while a module's load hangs, a look-up
// waits for the loader.
extern "C" BOOLEAN WINAPI RtlDllShutdownInProgress();

namespace Platform {

bool OtherThreadsAreGone() noexcept {
    return RtlDllShutdownInProgress() != 0;
}

}  // namespace Platform
