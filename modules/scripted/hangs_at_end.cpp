// SPDX-License-Identifier: Apache-2.0

// A vendor's module that never lets the process end: what it does then does not return.

#include <chrono>
#include <thread>

namespace {

struct HangsAtEnd {
    ~HangsAtEnd() {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::hours(1));
        }
    }
};
const HangsAtEnd hangsAtEnd;

}  // namespace
