// SPDX-License-Identifier: Apache-2.0

#include "platform/process_end.h"

namespace Platform {

// On Linux other threads run until the process is gone.
bool OtherThreadsAreGone() noexcept {
    return false;
}

}  // namespace Platform
