#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace App {

// Thrown where the user has asked the program to end.
struct Interrupted {};

// From now on a request to end the program cancels every wait of the process. May be called again.
void CancelOnInterrupt();

// The waits of the program's own thread that a request to end the program cuts short.
class Cancellation {
public:
    using Clock = std::chrono::steady_clock;

    static Cancellation& GetInstance();

    void Cancel();

    // Throws Interrupted when cancelled.
    void Check() const;

    // Waits until `isDone`, which is asked again after each Notify and needs no lock of its own, or
    // until `until`; whether it is done. Throws Interrupted when cancelled before.
    bool WaitUntil(Clock::time_point until, const std::function<bool()>& isDone);

    // The same, cancelled or not.
    bool WaitRegardless(Clock::time_point until, const std::function<bool()>& isDone);

    // Runs `change`, which may make a wait's condition true.
    void Notify(const std::function<void()>& change);

    // Whether work goes on that was no longer waited for: it may be inside a library.
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
