// SPDX-License-Identifier: Apache-2.0

#include "app/running/running_work.h"

#include <chrono>
#include <exception>
#include <utility>

#include "app/program/messages.h"
#include "app/running/awaiting.h"
#include "app/terminal/console.h"

namespace App {

RunningWork::RunningWork(std::string what, std::string late, std::function<int()> stopWork)
    : name(std::move(what)), lateness(std::move(late)), stop(std::move(stopWork)) {}

RunningWork::~RunningWork() {
    Stop();
    if (!problem.empty()) {
        Warn(problem);
    }
}

void RunningWork::Stop(const std::function<void()>& onWait) {
    constexpr auto limit = std::chrono::seconds(3);
    if (!running) {
        return;
    }
    running = false;
    try {
        AwaitRegardless(stop, onWait, limit);
    } catch (const TimedOut& late) {
        problem = (late.vendors.empty() ? lateness : late.vendors + " did not return") +
                  " in time; the program no longer waits for it.";
    } catch (const OutputClosed&) {
        throw;  // from `onWait`
    } catch (const std::exception& failure) {
        problem = "the " + name + " was not stopped: " + failure.what();
    }
}

}  // namespace App
