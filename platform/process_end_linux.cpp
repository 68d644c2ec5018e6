#include "platform/process_end.h"

namespace Platform {

// They go on until the process is gone.
bool OtherThreadsAreGone() noexcept {
    return false;
}

}  // namespace Platform
