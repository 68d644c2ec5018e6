#pragma once

#include <cstdint>

namespace Broker {

// Tells the calling thread from all others that run now. Safe in a signal handler.
std::uint64_t CurrentThread();

}  // namespace Broker
