// SPDX-License-Identifier: Apache-2.0

#include <pthread.h>

#include "broker/binding/current_thread.h"

namespace Broker {

std::uint64_t CurrentThread() {
    return pthread_self();
}

}  // namespace Broker
