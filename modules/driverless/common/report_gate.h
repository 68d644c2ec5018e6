// SPDX-License-Identifier: Apache-2.0

#pragma once

// Passes a scan's reports, one at a time, until the gate is closed.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Driverless {

class ReportGate {
public:
    // Calls `report` unless the gate is closed.
    template <typename Function>
    void Pass(Function report) {
        if (Enter()) {
            report();
            Leave();
        }
    }

    // Closes the gate: no report begins any more. Waits for a running report, unless called from
    // inside it. False when that takes longer than `patience`.
    bool Close(std::chrono::milliseconds patience);

private:
    bool Enter();
    void Leave();

    std::mutex mutex;
    std::condition_variable changed;
    bool closed = false;
    bool reporting = false;
    std::thread::id reporter;
};

}  // namespace Driverless
