// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/undertaking.h"

#include <condition_variable>
#include <mutex>

#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

// Never destroyed: threads run until the process is gone.
struct Undertakings {
    std::mutex mutex;
    std::condition_variable changed;
    unsigned brokenOff = 0;  // how often all were cancelled
    int underWay = 0;
};

Undertakings& All() {
    static Undertakings& all = *new Undertakings;
    return all;
}

thread_local bool isUnderWay = false;
thread_local unsigned begunAfter = 0;

}  // namespace

Undertaking::Undertaking() {
    const std::lock_guard lock(All().mutex);
    begunAfter = All().brokenOff;
    isUnderWay = true;
    ++All().underWay;
}

Undertaking::~Undertaking() {
    const std::lock_guard lock(All().mutex);
    isUnderWay = false;
    --All().underWay;
    All().changed.notify_all();
}

void Undertaking::GoOn() {
    const std::lock_guard lock(All().mutex);
    if (isUnderWay && All().brokenOff != begunAfter) {
        throw WifiProblem("it was broken off");
    }
}

void Undertaking::BreakOffAll(std::chrono::milliseconds patience) {
    std::unique_lock lock(All().mutex);
    ++All().brokenOff;
    All().changed.wait_for(lock, patience, [] { return All().underWay == 0; });
}

}  // namespace Host
