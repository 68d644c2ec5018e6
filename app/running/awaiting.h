#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "app/program/settings.h"
#include "app/program/status_line.h"
#include "app/running/cancellation.h"
#include "app/running/timed_out.h"
#include "app/running/work.h"

namespace App {

constexpr auto kWaitTick = std::chrono::milliseconds(200);
constexpr auto kNoLimit = Cancellation::Clock::duration::max();

// How long whoever is asked may take, unless the settings say otherwise: for an answer, and for a
// printer or this computer to join a network.
constexpr auto kAnswerLimit = std::chrono::seconds(30);
constexpr auto kJoinLimit = std::chrono::seconds(180);

// The vendors that work which began at `began` waits for, or the module that is being loaded.
std::string AwaitedVendors(std::uint64_t began);

// Waits for work by `wait`, which waits until a moment or until the condition is true, and says
// whether it is. `onWait` is called a few times a second.
template <class Result, class Wait>
Result AwaitWork(std::function<Result()> work, const std::function<void()>& onWait,
                 Cancellation::Clock::duration limit, Wait wait) {
    const auto start = Cancellation::Clock::now();
    const auto end = limit == kNoLimit ? Cancellation::Clock::time_point::max() : start + limit;
    Work<Result> running(std::move(work));
    const std::function<bool()> isDone = [&running] { return running.IsDone(); };
    while (!wait(
        std::min<Cancellation::Clock::time_point>(Cancellation::Clock::now() + kWaitTick, end),
        isDone)) {
        if (Cancellation::Clock::now() >= end) {
            throw TimedOut(AwaitedVendors(running.Began()), limit);
        }
        onWait();
    }
    return running.Take();
}

// Does what may take long and cannot be cut short, on a thread of its own, and waits for it.
// `onWait` is called a few times a second. Throws Interrupted when cancelled before it is done, and
// TimedOut when it is not done within `limit`: then it goes on as long as the process does, and
// must own all it uses.
template <class Result>
Result AwaitInterruptibly(std::function<Result()> work, const std::function<void()>& onWait,
                          Cancellation::Clock::duration limit = kNoLimit) {
    CancelOnInterrupt();
    Cancellation& cancellation = Cancellation::GetInstance();
    cancellation.Check();
    return AwaitWork<Result>(std::move(work), onWait, limit,
                             [&cancellation](auto until, const auto& isDone) {
                                 return cancellation.WaitUntil(until, isDone);
                             });
}

// The same for what has to be done though the user has asked the program to end.
template <class Result>
Result AwaitRegardless(std::function<Result()> work, const std::function<void()>& onWait,
                       Cancellation::Clock::duration limit) {
    CancelOnInterrupt();
    return AwaitWork<Result>(std::move(work), onWait, limit, [](auto until, const auto& isDone) {
        return Cancellation::GetInstance().WaitRegardless(until, isDone);
    });
}

// As AwaitInterruptibly, while the terminal says what is waited for.
template <class Result>
Result Await(const Settings& settings, const std::string& what, std::function<Result()> work,
             Cancellation::Clock::duration limit = kAnswerLimit) {
    StatusLine status(settings, what);
    return AwaitInterruptibly<Result>(
        std::move(work), [&] { status.Draw(); }, settings.LimitOr(limit));
}

}  // namespace App
