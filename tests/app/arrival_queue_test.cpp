// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/arrival_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace App {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

class ArrivalQueueTest : public testing::Test {
protected:
    ArrivalQueueTest() { queue.SetPatience(10s); }

    void Come(const std::wstring& deviceId) { queue.Add({deviceId, 1}, now + 1s); }

    // The model that is asked about now; empty when none is.
    std::wstring Begun() {
        const auto question = queue.Begin(now);
        last = question ? question->number : 0;
        return question ? question->arrival.deviceId : L"";
    }

    ArrivalQueue queue{{2, 3, 2}};
    ArrivalQueue::Time now{100s};
    std::uint64_t last = 0;
};

TEST_F(ArrivalQueueTest, AnArrivalIsAskedAboutWhenItIsDue) {
    Come(L"a");
    EXPECT_EQ(queue.Next(), now + 1s);
    EXPECT_EQ(Begun(), L"");
    now += 1s;
    EXPECT_EQ(Begun(), L"a");
    EXPECT_EQ(Begun(), L"");
}

TEST_F(ArrivalQueueTest, SoManyAreAskedAtATimeAndTheOthersWait) {
    Come(L"a");
    Come(L"b");
    now += 1s;
    EXPECT_EQ(Begun(), L"a");
    const std::uint64_t first = last;
    EXPECT_EQ(Begun(), L"b");
    Come(L"c");
    now += 1s;
    EXPECT_EQ(Begun(), L"");
    EXPECT_EQ(queue.Unasked(now), 1U);
    EXPECT_EQ(queue.Next(), now + 9s) << "when those under way are late";
    queue.End(first);
    EXPECT_EQ(Begun(), L"c");
    EXPECT_EQ(queue.Unasked(now), 0U);
}

TEST_F(ArrivalQueueTest, WhatIsDueWhileThereIsRoomIsNotCountedAsUnasked) {
    Come(L"a");
    now += 1s;
    EXPECT_EQ(queue.Unasked(now), 0U);
    Begun();
    Come(L"b");
    now += 1s;
    EXPECT_EQ(queue.Unasked(now), 0U);
}

TEST_F(ArrivalQueueTest, AQuestionThatIsLateIsToldOnceAndMakesRoomUpToATotal) {
    Come(L"a");
    Come(L"b");
    now += 1s;
    Begun();
    Begun();
    Come(L"c");
    Come(L"d");
    now += 10s;
    EXPECT_THAT(queue.TakeLate(now), ElementsAre(L"a", L"b"));
    EXPECT_THAT(queue.TakeLate(now), IsEmpty());
    EXPECT_EQ(Begun(), L"c");
    EXPECT_EQ(Begun(), L"") << "there are three under way";
    now += 10s;
    EXPECT_THAT(queue.TakeLate(now), ElementsAre(L"c"));
    EXPECT_EQ(Begun(), L"");
    EXPECT_EQ(queue.Next(), std::nullopt) << "nothing will happen by itself";
}

TEST_F(ArrivalQueueTest, WithoutRoomToWaitAnArrivalIsMissed) {
    Come(L"a");
    Come(L"b");
    EXPECT_FALSE(queue.HasMissed());
    Come(L"c");
    EXPECT_TRUE(queue.HasMissed());
    EXPECT_EQ(queue.Unasked(now), 1U) << "the others are not due yet";
}

TEST_F(ArrivalQueueTest, WithoutALimitNoQuestionIsLate) {
    queue.SetPatience(ArrivalQueue::Duration::max());
    Come(L"a");
    now += 1s;
    EXPECT_EQ(Begun(), L"a");
    EXPECT_EQ(queue.Next(), std::nullopt);
    EXPECT_THAT(queue.TakeLate(now + 10000h), IsEmpty());
}

}  // namespace

}  // namespace App
