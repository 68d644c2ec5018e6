#pragma once

#include <atomic>

#include "platform/os_calls.h"

namespace Broker {

// Stands before tables that threads of the library's own look into while the process may end: once
// it is closed nobody gets in, and nobody is inside. It needs no destruction.
class TableGate {
public:
    // Closes the gate and waits for who is inside. They only look things up, so it is a moment; the
    // wait has an end all the same, since a system may end threads before it destroys objects.
    void Close() {
        isClosed = true;
        for (int patience = kPatience; inside != 0 && patience > 0; --patience) {
            Sleep(1);
        }
    }

private:
    friend class TableUse;
    static constexpr int kPatience = 100;  // waits of 1 ms

    std::atomic<int> inside{0};
    std::atomic<bool> isClosed{false};
};

// One look behind the gate, for as long as it lives; none when the gate is closed.
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
