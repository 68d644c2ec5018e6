// SPDX-License-Identifier: Apache-2.0

#include "tests/support/in_threads.h"

#include <thread>
#include <vector>

void InThreads(int count, const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
