// SPDX-License-Identifier: Apache-2.0

#include "ways_to_end.h"

#include <pthread.h>

#include <cstdlib>

namespace ScriptedVendor {

void QuickExit() {
    std::quick_exit(0);
}

void EndThread() {
    pthread_exit(nullptr);
}

}  // namespace ScriptedVendor
