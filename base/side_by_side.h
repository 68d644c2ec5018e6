#pragma once

// Asks many at once, so that one that does not answer keeps no other waiting.

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
    std::chrono::milliseconds patience;  // after this time no further one is asked
};

// Calls ask(number) for the numbers below `count`, the lower ones first, on several threads, and
// waits for all that was begun. Returns why there were fewer threads than wanted: then those that
// there are ask the more. Throws what `ask` throws.
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
