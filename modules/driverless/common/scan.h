// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

namespace Driverless {

// A scan that reports until it is stopped.
class Scan {
public:
    virtual ~Scan() = default;

    // Reports on the calling thread until it is stopped. Returns the entry point's result.
    virtual int Run() = 0;

    // Makes Run return; no report begins any more. Waits for a running report, unless called from
    // inside it. False when that takes longer than `patience`. Safe from any thread.
    virtual bool Stop(std::chrono::milliseconds patience) = 0;
};

}  // namespace Driverless
