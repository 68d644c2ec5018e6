#pragma once

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/process_end.h"

namespace Broker {

// Guards tables that detached threads may read during process exit. After Close() no reader is
// inside and none can enter. It needs no destruction.
class TableGate {
public:
    // Closes the gate and waits for readers that are inside. They look things up and do nothing
    // else, so that takes a moment; in a process that was copied by fork they never leave, and the
    // wait ends all the same.
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

// One look-up behind the gate, for as long as it lives; false when the gate is closed. Neither logs
// nor calls anybody: the end of the process waits for it.
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
