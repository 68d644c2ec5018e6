// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/linux/bus_use_linux.h"

#include <sdbus-c++/sdbus-c++.h>
#include <sys/socket.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <set>

#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

constexpr std::chrono::seconds kPatienceAtExit{1};

// Never destroyed: threads run until the process is gone.
struct Uses {
    std::mutex mutex;
    std::condition_variable changed;
    bool over = false;
    int count = 0;
    std::set<int> connections;
};

Uses& TheUses() {
    static Uses& uses = *new Uses;
    return uses;
}

void EndUses() {
    Uses& uses = TheUses();
    std::unique_lock lock(uses.mutex);
    uses.over = true;
    for (const int connection : uses.connections) {
        shutdown(connection, SHUT_RDWR);
    }
    uses.changed.wait_for(lock, kPatienceAtExit, [&uses] { return uses.count == 0; });
}

// Static objects are destroyed in reverse order of creation: the bus library creates its last one
// with the first variant.
void PrepareForExit() {
    static const int registered = [] {
        static_cast<void>(sdbus::Variant());
        return std::atexit(EndUses);
    }();
    static_cast<void>(registered);
}

}  // namespace

BusUse::BusUse() {
    PrepareForExit();
    Uses& uses = TheUses();
    const std::lock_guard lock(uses.mutex);
    if (uses.over) {
        throw WifiProblem("the process is ending");
    }
    ++uses.count;
}

BusUse::~BusUse() {
    Of(-1);
    Uses& uses = TheUses();
    const std::lock_guard lock(uses.mutex);
    --uses.count;
    uses.changed.notify_all();
}

void BusUse::Of(int connectionDescriptor) {
    Uses& uses = TheUses();
    const std::lock_guard lock(uses.mutex);
    uses.connections.erase(descriptor);
    descriptor = connectionDescriptor;
    if (descriptor < 0) {
        return;
    }
    uses.connections.insert(descriptor);
    if (uses.over) {
        shutdown(descriptor, SHUT_RDWR);
    }
}

}  // namespace Host
