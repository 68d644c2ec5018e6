#include "platform/os.h"
#include "vendor/current_thread.h"

namespace Broker {

std::uint64_t CurrentThread() {
    return GetCurrentThreadId();
}

}  // namespace Broker
