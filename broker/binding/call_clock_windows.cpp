// SPDX-License-Identifier: Apache-2.0

#include "broker/binding/call_clock.h"
#include "platform/os.h"

namespace Broker {

std::uint64_t CallClock() {
    constexpr std::uint64_t nanosecondsPerMillisecond = 1'000'000;
    return GetTickCount64() * nanosecondsPerMillisecond;
}

}  // namespace Broker
