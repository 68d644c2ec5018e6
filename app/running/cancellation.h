// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

#include "app/outcome/ending.h"

namespace App {

// Thrown when the user has asked the program to end.
class Interrupted : public Ending {
public:
    Interrupted() : Ending("interrupted.") {}
};

// Makes a request to end the program cancel every wait of the process. May be called again.
void CancelOnInterrupt();

// The waits of the program's own thread, which a request to end the program cancels.
class Cancellation {
public:
    using Clock = std::chrono::steady_clock;

    static Cancellation& GetInstance();

    void Cancel();

    // Throws Interrupted when cancelled.
    void Check() const;

    // Waits until `isDone` is true or until the time `until`, and returns whether it is done.
    // Checks `isDone`, which needs no lock, after each Notify. Throws Interrupted when cancelled
    // first.
    bool WaitUntil(Clock::time_point until, const std::function<bool()>& isDone);

    // The same, but cannot be cancelled.
    bool WaitRegardless(Clock::time_point until, const std::function<bool()>& isDone);

    // Runs `change`, which may make a wait's `isDone` true, and checks the waits again.
    void Notify(const std::function<void()>& change);

    // Whether abandoned work still runs; it may be inside a library.
    bool LeavesWorkBehind() const { return workLeftBehind; }
    void LeaveWorkBehind() { workLeftBehind = true; }

private:
    Cancellation() = default;

    mutable std::mutex mutex;
    std::condition_variable changed;
    bool cancelled = false;
    std::atomic<bool> workLeftBehind = false;
};

}  // namespace App
