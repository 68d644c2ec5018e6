#pragma once

#include <atomic>
#include <memory>
#include <new>
#include <thread>
#include <utility>

#include "platform/os_calls.h"

namespace Broker {

// Keeps this library in memory until the process ends, whoever unloads it: its code runs, or will
// be called, on threads that nobody waits for.
inline void KeepThisLibrary() {
    static std::atomic<bool> isKept{false};
    if (!isKept) {
        isKept = KeepLoaded(reinterpret_cast<const void*>(&KeepThisLibrary));
    }
}

// What the application wants done first on each thread that calls a vendor.
void PrepareThread();

// Runs `body` on a thread of its own that nobody waits for. Throws std::system_error when there is
// none to be had. A body that has no memory ends where it is: there is nobody to tell.
//
// The thread does not end before it is detached: the run-time library of MinGW-w64 mixes up its
// threads when one ends while it is being detached, and one that is started next never runs. It
// yields rather than waits: that run-time's waiting leaves static objects whose destruction hangs
// when the process ends while a thread was about to wait.
template <class Body>
void RunDetached(Body body) {
    KeepThisLibrary();
    const auto detached = std::make_shared<std::atomic<bool>>(false);
    std::thread([body = std::move(body), detached] {
        PrepareThread();
        try {
            body();
        } catch (const std::bad_alloc&) {
            // What it had still to do is lost.
        }
        while (!*detached) {
            std::this_thread::yield();
        }
    }).detach();
    *detached = true;
}

}  // namespace Broker
