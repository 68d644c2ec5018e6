// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <thread>

#include "base/side_by_side.h"

namespace Base {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

class SideBySide : public testing::Test {
protected:
    static constexpr std::size_t kMany = 500;

    // Each takes so long to be asked in vain; how long all of them take.
    Clock::duration Ask(const SideBySideLimits& limits, milliseconds each) {
        const auto begin = Clock::now();
        AskSideBySide(kMany, limits, [&](std::size_t number) {
            std::this_thread::sleep_for(each);
            ++asked.at(number);
        });
        return Clock::now() - begin;
    }

    std::size_t CountAsked() const {
        return static_cast<std::size_t>(
            std::count_if(asked.begin(), asked.end(), [](const auto& times) { return times > 0; }));
    }

    std::array<std::atomic<int>, kMany> asked{};
};

TEST_F(SideBySide, ManyThatAreSilent_TakeTheTimeOfAFew) {
    const auto took = Ask({32, milliseconds(60000)}, milliseconds(20));
    EXPECT_TRUE(std::all_of(asked.begin(), asked.end(), [](const auto& n) { return n == 1; }));
    EXPECT_LT(took, milliseconds(5000)) << "one after the other they take 10 s";
}

TEST_F(SideBySide, ManyThatAreSilent_AreNotAllWaitedFor) {
    Ask({32, milliseconds(150)}, milliseconds(100));
    EXPECT_LE(CountAsked(), 64U) << "two by each thread";
    EXPECT_EQ(asked.front(), 1);
    EXPECT_EQ(asked.back(), 0) << "the lower ones go first";
}

TEST_F(SideBySide, Nothing_IsAskedOfNone) {
    AskSideBySide(0, {32, milliseconds(100)}, [](std::size_t) { FAIL(); });
}

}  // namespace
}  // namespace Base
