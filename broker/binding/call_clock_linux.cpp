// SPDX-License-Identifier: Apache-2.0

#include <ctime>

#include "broker/binding/call_clock.h"

namespace Broker {

std::uint64_t CallClock() {
    constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * nanosecondsPerSecond +
           static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace Broker
