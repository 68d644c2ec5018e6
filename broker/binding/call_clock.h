// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

namespace Broker {

// Nanoseconds on a clock that never goes back. It advances every few milliseconds, which is enough
// to tell calls apart and several times cheaper than std::chrono::steady_clock. Safe in a signal
// handler.
std::uint64_t CallClock();

}  // namespace Broker
