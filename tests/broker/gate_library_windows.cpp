// SPDX-License-Identifier: Apache-2.0

// The library of gate_at_exit: it has a gate, as the broker does, and closes it when the process
// ends.

#include <chrono>
#include <fstream>
#include <string>

#include "broker/binding/table_gate.h"
#include "platform/compiler.h"

namespace {

Broker::TableGate gate;
std::string record;

struct Closing {
    ~Closing() {
        const auto start = std::chrono::steady_clock::now();
        gate.Close();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - start;
        std::ofstream(record) << took.count() << '\n';
    }
} closing;

}  // namespace

extern "C" {

PLATFORM_EXPORT void RecordTheClosing(const char* file) {
    record = file;
}

// Goes behind the gate, says so, and comes back never.
PLATFORM_EXPORT void StayBehindTheGate(void (*onEntry)()) {
    const Broker::TableUse use(gate);
    onEntry();
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}
}
