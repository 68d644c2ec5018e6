#include "app/running_scan.h"

#include <chrono>
#include <exception>
#include <utility>

#include "app/cancellation.h"
#include "app/messages.h"

namespace App {

RunningScan::RunningScan(std::string who, std::function<int()> stopScan)
    : owner(std::move(who)), stop(std::move(stopScan)) {}

RunningScan::~RunningScan() {
    try {
        Stop();
    } catch (const std::exception& failure) {
        Warn(std::string("the scan was not stopped: ") + failure.what());
    }
    if (isLate) {
        Warn(owner + " has not stopped its scan in time; nobody waits for it any more.");
    }
}

void RunningScan::Stop() {
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
