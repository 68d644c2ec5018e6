#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "app/cancellation.h"
#include "app/crash_report.h"
#include "app/problem.h"
#include "app/vendor_calls.h"
#include "platform/compiler.h"

namespace App {

// Rethrows what work that began at `began` has thrown: named, when a vendor threw it.
[[noreturn]] void Rethrow(const std::exception_ptr& failure, std::uint64_t began);

// Work on a thread of its own, which cannot be cut short. If nobody takes its result it is left
// behind: it goes on as long as the process does, and must own all it uses.
template <class Result>
class Work {
public:
    explicit Work(std::function<Result()> work);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    // To be asked inside a wait of Cancellation.
    bool IsDone() const { return outcome->result || outcome->failure; }

    // The result, once it is done. Throws what the work has thrown.
    Result Take();

    std::uint64_t Began() const { return began; }

private:
    // Calls `end` also when the thread is ended, which comes as an exception that goes on.
    class AtEnd {
    public:
        explicit AtEnd(std::function<void()> whatToDo) : end(std::move(whatToDo)) {}
        ~AtEnd() { end(); }
        AtEnd(const AtEnd&) = delete;
        AtEnd& operator=(const AtEnd&) = delete;

    private:
        const std::function<void()> end;
    };

    struct Outcome {
        std::optional<Result> result;
        std::exception_ptr failure;
        std::atomic<bool> mayEnd = false;
    };

    static void Run(const std::function<Result()>& work, Outcome& outcome);

    const std::uint64_t began = CallClockNow();
    const std::shared_ptr<Outcome> outcome = std::make_shared<Outcome>();
    std::thread thread;
};

template <class Result>
Work<Result>::Work(std::function<Result()> work)
    : thread([own = outcome, work = std::move(work)] { Run(work, *own); }) {}

template <class Result>
Work<Result>::~Work() {
    if (thread.joinable()) {
        // It does not end before it is detached: the run-time library of MinGW-w64 mixes up its
        // threads when one ends meanwhile, and one that is started next never runs.
        thread.detach();
        Cancellation::GetInstance().LeaveWorkBehind();
        outcome->mayEnd = true;
    }
}

template <class Result>
void Work<Result>::Run(const std::function<Result()>& work, Outcome& outcome) {
    ReportCrashesOfThisThread();
    std::optional<Result> result;
    std::exception_ptr failure =
        std::make_exception_ptr(Problem("a vendor has ended the thread that it was called on"));
    {
        const AtEnd tell([&] {
            Cancellation::GetInstance().Notify([&] {
                outcome.result = std::move(result);
                outcome.failure = failure;
            });
        });
        try {
            result = work();
            failure = nullptr;
        }
        PLATFORM_CATCH_ALL {
            failure = std::current_exception();
        }
    }
    while (!outcome.mayEnd) {
        std::this_thread::yield();
    }
}

template <class Result>
Result Work<Result>::Take() {
    outcome->mayEnd = true;
    thread.join();
    if (outcome->failure) {
        Rethrow(outcome->failure, began);
    }
    return std::move(*outcome->result);
}

}  // namespace App
