// SPDX-License-Identifier: Apache-2.0

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

// The default time limits: for an answer, and for a printer or this computer to join a network.
constexpr auto kAnswerLimit = std::chrono::seconds(30);
constexpr auto kJoinLimit = std::chrono::seconds(180);

// Names the vendors, or the module being loaded, for which work started at `began` is waiting.
std::string AwaitedVendors(std::uint64_t began);

// Waits for `work` with `wait`, which waits until a time or until a condition is true and returns
// whether it is true. Calls `onWait` a few times a second.
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

// Runs `work`, which may take long and cannot be cancelled, on a new thread and waits for it. Calls
// `onWait` a few times a second. Throws Interrupted when cancelled first, and TimedOut when the
// work is not done within `limit`: the work then continues until the process ends, and must own all
// that it uses.
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

// The same for work that must be done even after the user has asked the program to end.
template <class Result>
Result AwaitRegardless(std::function<Result()> work, const std::function<void()>& onWait,
                       Cancellation::Clock::duration limit) {
    CancelOnInterrupt();
    return AwaitWork<Result>(std::move(work), onWait, limit, [](auto until, const auto& isDone) {
        return Cancellation::GetInstance().WaitRegardless(until, isDone);
    });
}

// Runs `work` like AwaitInterruptibly, with a status line that says what the program waits for.
template <class Result>
Result Await(const std::string& what, std::function<Result()> work,
             Cancellation::Clock::duration limit = kAnswerLimit) {
    StatusLine status(what);
    return AwaitInterruptibly<Result>(
        std::move(work), [&] { status.Draw(); }, AnswerLimitOr(limit));
}

}  // namespace App
