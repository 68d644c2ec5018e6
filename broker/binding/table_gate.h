// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/process_end.h"

namespace Broker {

// Guards tables that detached threads may read during process exit. After Close() no reader is
// inside and none can enter. Trivially destructible.
class TableGate {
public:
    // Closes the gate and waits for the readers inside. Readers only look things up, so the wait is
    // short. In a child after fork the readers never leave; the wait ends anyway.
    void Close() {
        isClosed = true;
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (inside != 0 && !Platform::OtherThreadsAreGone() &&
               std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
    }

private:
    friend class TableUse;
    static constexpr std::chrono::seconds kPatience{1};

    std::atomic<int> inside{0};
    std::atomic<bool> isClosed{false};
};

// One look-up behind the gate, during the object's lifetime. False when the gate is closed. The
// holder must not log or call vendors: process exit waits for it.
class TableUse {
public:
    explicit TableUse(TableGate& tableGate) : gate(tableGate) { ++gate.inside; }
    ~TableUse() { --gate.inside; }
    TableUse(const TableUse&) = delete;
    TableUse& operator=(const TableUse&) = delete;

    explicit operator bool() const { return !gate.isClosed; }

private:
    TableGate& gate;
};

}  // namespace Broker
