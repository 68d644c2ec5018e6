// SPDX-License-Identifier: Apache-2.0

#include <windows.h>

#include "ways_to_end.h"

namespace ScriptedVendor {

void QuickExit() {
    ExitProcess(0);
}

void EndThread() {
    ExitThread(0);
}

}  // namespace ScriptedVendor
