// SPDX-License-Identifier: Apache-2.0

// gate_at_exit RECORD: ends while a thread is behind a gate that a library closes at the end.
// RECORD then has how long that took, in milliseconds.

#include <atomic>
#include <thread>

#include "platform/compiler.h"

extern "C" {
PLATFORM_IMPORT void RecordTheClosing(const char* file);
PLATFORM_IMPORT void StayBehindTheGate(void (*onEntry)());
}

namespace {

std::atomic<bool> isBehind{false};

}  // namespace

int main(int, char** arguments) {
    RecordTheClosing(arguments[1]);
    std::thread([] { StayBehindTheGate([] { isBehind = true; }); }).detach();
    while (!isBehind) {
        std::this_thread::yield();
    }
    return 0;
}
