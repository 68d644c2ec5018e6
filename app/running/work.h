// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>

#include "app/running/cancellation.h"
#include "app/running/vendor_calls.h"
#include "app/terminal/crash_report.h"

namespace App {

// Rethrows the exception of work that began at `began`; names the vendor if a vendor threw it, or
// ended the thread.
[[noreturn]] void Rethrow(const std::exception_ptr& failure, std::uint64_t began);

// Work on a separate thread that cannot be cancelled. If the result is not taken, the work is
// abandoned: it continues until the process ends, and must own all that it uses.
template <class Result>
class Work {
public:
    explicit Work(std::function<Result()> work);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    // Call this only inside a wait of Cancellation.
    bool IsDone() const { return outcome->isThere; }

    // The result of finished work. Throws what the work has thrown.
    Result Take();

    std::uint64_t Began() const { return began; }

private:
    struct Outcome {
        std::future<Result> result;
        bool isThere = false;
        std::atomic<bool> mayEnd = false;

        // A destructor, so that it also runs when the vendor ends the thread, which unwinds the
        // stack.
        struct Announcement {
            Outcome& outcome;
            ~Announcement() {
                Cancellation::GetInstance().Notify([this] { outcome.isThere = true; });
            }
        };
    };

    static void Run(std::packaged_task<Result()>& work, Outcome& outcome);

    const std::uint64_t began = VendorCallClock();
    const std::shared_ptr<Outcome> outcome = std::make_shared<Outcome>();
    std::thread thread;
};

template <class Result>
Work<Result>::Work(std::function<Result()> function) {
    std::packaged_task<Result()> work(std::move(function));
    outcome->result = work.get_future();
    thread = std::thread([own = outcome, work = std::move(work)]() mutable { Run(work, *own); });
}

template <class Result>
Work<Result>::~Work() {
    if (thread.joinable()) {
        // The thread does not end before it is detached: the run-time library of MinGW-w64 confuses
        // its threads otherwise, and the thread started next never runs.
        thread.detach();
        Cancellation::GetInstance().LeaveWorkBehind();
        outcome->mayEnd = true;
    }
}

template <class Result>
void Work<Result>::Run(std::packaged_task<Result()>& work, Outcome& outcome) {
    ReportCrashesOfThisThread();
    {
        const typename Outcome::Announcement announcement{outcome};
        work();
    }
    while (!outcome.mayEnd) {
        std::this_thread::yield();
    }
}

template <class Result>
Result Work<Result>::Take() {
    outcome->mayEnd = true;
    thread.join();
    try {
        return outcome->result.get();
    } catch (...) {
        Rethrow(std::current_exception(), began);
    }
}

}  // namespace App
