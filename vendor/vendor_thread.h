#pragma once

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

namespace Broker {

// Runs `body` on a thread of its own that nobody waits for. Throws std::system_error when there is
// none to be had.
//
// The thread does not end before it is detached: the run-time library of MinGW-w64 mixes up its
// threads when one ends while it is being detached, and one that is started next never runs.
template <class Body>
void RunDetached(Body body) {
    const auto detached = std::make_shared<std::atomic<bool>>(false);
    std::thread([body = std::move(body), detached] {
        body();
        detached->wait(false);
    }).detach();
    detached->store(true);
    detached->notify_one();
}

}  // namespace Broker
