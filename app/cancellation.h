#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

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

// Runs `work`, which may take long and cannot be cut short, on a thread of its own and waits for
// it. `onWait` is called a few times a second. Throws Interrupted when cancelled before: then
// `work` goes on as long as the process does, and must own all it uses. With a `grace` it is begun
// even when cancelled already, and has that long to end from then on.
template <class Result>
Result AwaitInterruptibly(std::function<Result()> work, const std::function<void()>& onWait,
                          Cancellation::Clock::duration grace = {}) {
    using Clock = Cancellation::Clock;
    struct Outcome {
        std::optional<Result> result;
        std::exception_ptr failure;
        std::atomic<bool> mayEnd = false;
    };
    constexpr auto tick = std::chrono::milliseconds(200);
    CancelOnInterrupt();
    Cancellation& cancellation = Cancellation::GetInstance();
    if (grace == Clock::duration::zero()) {
        cancellation.Check();
    }
    const auto outcome = std::make_shared<Outcome>();
    std::thread worker([&cancellation, outcome, work = std::move(work)] {
        std::optional<Result> result;
        std::exception_ptr failure;
        try {
            result = work();
        } catch (...) {
            failure = std::current_exception();
        }
        cancellation.Notify([&] {
            outcome->result = std::move(result);
            outcome->failure = failure;
        });
        while (!outcome->mayEnd) {
            std::this_thread::yield();
        }
    });
    const auto isDone = [&] { return outcome->result || outcome->failure; };
    const auto wait = [&] {
        try {
            while (!cancellation.WaitUntil(Clock::now() + tick, isDone)) {
                onWait();
            }
        } catch (const Interrupted&) {
            if (!cancellation.WaitRegardless(Clock::now() + grace, isDone)) {
                throw;
            }
        }
    };
    try {
        wait();
    } catch (...) {
        // It does not end before it is detached: the run-time library of MinGW-w64 mixes up its
        // threads when one ends meanwhile, and one that is started next never runs.
        worker.detach();
        cancellation.LeaveWorkBehind();
        outcome->mayEnd = true;
        throw;
    }
    outcome->mayEnd = true;
    worker.join();
    if (outcome->failure) {
        std::rethrow_exception(outcome->failure);
    }
    return std::move(*outcome->result);
}

}  // namespace App
