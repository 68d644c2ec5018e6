#pragma once

namespace Platform {

// Whether the system has ended all other threads of the process already, wherever they were: nobody
// may wait for them, nor for a lock that one of them may hold.
bool OtherThreadsAreGone() noexcept;

}  // namespace Platform
