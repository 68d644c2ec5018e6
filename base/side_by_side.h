// SPDX-License-Identifier: Apache-2.0

#pragma once

// Asks many peers at once, so that a peer that does not answer delays no other.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <string>
#include <system_error>
#include <vector>

namespace Base {

struct SideBySideLimits {
    std::size_t threads;
    std::chrono::milliseconds patience;  // after this time no further peer is asked
};

// Calls ask(number) for the numbers below `count`, in ascending order, on several threads, and
// waits for all started calls. If not all threads can be started the others do their work, and the
// reason is returned; empty otherwise. Throws what `ask` throws.
template <class Ask>
std::string AskSideBySide(std::size_t count, const SideBySideLimits& limits, Ask ask) {
    const auto now = [] { return std::chrono::steady_clock::now(); };
    std::atomic<std::size_t> next = 0;
    const auto work = [&, end = now() + limits.patience] {
        for (std::size_t i = next++; i < count && now() < end; i = next++) {
            ask(i);
        }
    };
    std::vector<std::future<void>> others;
    std::string problem;
    try {
        for (std::size_t i = 1; i < std::min(count, limits.threads); ++i) {
            others.push_back(std::async(std::launch::async, work));
        }
    } catch (const std::system_error& error) {
        problem = error.what();
    }
    work();
    for (std::future<void>& other : others) {
        other.get();
    }
    return problem;
}

}  // namespace Base
