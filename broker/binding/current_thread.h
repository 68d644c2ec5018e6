// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

namespace Broker {

// An identifier of the calling thread, unique among the running threads. Safe in a signal handler.
std::uint64_t CurrentThread();

}  // namespace Broker
