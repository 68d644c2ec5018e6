#include "app/running_work.h"

#include <chrono>
#include <exception>
#include <utility>

#include "app/cancellation.h"
#include "app/messages.h"

namespace App {

RunningWork::RunningWork(std::string what, std::string late, std::function<int()> stopWork)
    : name(std::move(what)), lateness(std::move(late)), stop(std::move(stopWork)) {}

RunningWork::~RunningWork() {
    try {
        Stop();
    } catch (const std::exception& failure) {
        Warn("the " + name + " was not stopped: " + failure.what());
    }
    if (isLate) {
        Warn(lateness + " in time; nobody waits for it any more.");
    }
}

void RunningWork::Stop() {
    constexpr auto patience = std::chrono::seconds(3);
    if (!running) {
        return;
    }
    running = false;
    try {
        AwaitInterruptibly(
            stop, [] {}, patience);
    } catch (const Interrupted&) {
        isLate = true;
    }
}

}  // namespace App
