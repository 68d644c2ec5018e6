#pragma once

// Lets a scan's reports through, one at a time, until it is closed.

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

    // From here on no report begins. True once none is under way, other than one from which this
    // is called; false when that takes longer than `patience`.
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
