// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

namespace Host {

// A join in progress on the calling thread, which the end of the program cancels.
class Undertaking {
public:
    Undertaking();
    ~Undertaking();
    Undertaking(const Undertaking&) = delete;
    Undertaking& operator=(const Undertaking&) = delete;

    // Throws WifiProblem when the calling thread's join was cancelled.
    static void GoOn();

    // Cancels all joins in progress and waits up to `patience` until they have ended.
    static void BreakOffAll(std::chrono::milliseconds patience);
};

}  // namespace Host
