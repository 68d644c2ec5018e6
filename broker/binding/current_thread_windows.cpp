// SPDX-License-Identifier: Apache-2.0

#include "broker/binding/current_thread.h"
#include "platform/os.h"

namespace Broker {

std::uint64_t CurrentThread() {
    return GetCurrentThreadId();
}

}  // namespace Broker
