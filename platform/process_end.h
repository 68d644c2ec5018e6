// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace Platform {

// Returns whether the system has already terminated all other threads of the process, at any point
// of their work. The caller must then wait neither for them nor for a lock that one of them may
// hold.
bool OtherThreadsAreGone() noexcept;

}  // namespace Platform
