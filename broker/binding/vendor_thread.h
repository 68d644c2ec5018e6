// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <memory>
#include <new>
#include <thread>
#include <utility>

#include "platform/os_calls.h"

namespace Broker {

// Keeps this library in memory until the process ends, even when it is unloaded: detached threads
// run or call its code.
inline void KeepThisLibrary() {
    static std::atomic<bool> isKept{false};
    if (!isKept) {
        isKept = KeepLoaded(reinterpret_cast<const void*>(&KeepThisLibrary));
    }
}

// Runs the application's `prepare` (PrepareVendorThreads) on this thread.
void PrepareThread();

// Runs `body` on a new detached thread. Throws std::system_error when the thread cannot be started.
// If `body` runs out of memory, it ends without any report.
//
// The thread does not end before it is detached. The run-time library of MinGW-w64 confuses its
// threads when a thread ends while it is being detached: the thread started next then never runs.
// The thread yields instead of waiting, because waiting in that run-time library creates static
// objects whose destruction hangs when the process ends while a thread is about to wait.
template <class Body>
void RunDetached(Body body) {
    KeepThisLibrary();
    const auto detached = std::make_shared<std::atomic<bool>>(false);
    std::thread([body = std::move(body), detached] {
        PrepareThread();
        try {
            body();
        } catch (const std::bad_alloc&) {
            // The rest of its work is lost.
        }
        while (!*detached) {
            std::this_thread::yield();
        }
    }).detach();
    *detached = true;
}

}  // namespace Broker
