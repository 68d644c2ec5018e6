// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modules/driverless/discovery/fair_window.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;

class FairWindowTest : public testing::Test {
protected:
    using Window = FairWindow<std::string, int>;

    void Add(const std::string& owner, int first, int last) {
        for (int item = first; item <= last; ++item) {
            window.Add(owner, item);
        }
    }

    std::vector<int> TakeAll() {
        std::vector<int> taken;
        while (const auto item = window.Take(now)) {
            taken.push_back(*item);
        }
        return taken;
    }

    Window window{{8, 32, milliseconds(100)}};
    Window::Time now{};
};

TEST_F(FairWindowTest, Empty_HasNothing) {
    EXPECT_TRUE(TakeAll().empty());
    EXPECT_EQ(window.Next(), std::nullopt);
}

TEST_F(FairWindowTest, AnOwnersItems_ComeFromBothEndsInTurns) {
    Add("a", 1, 4);
    EXPECT_EQ(TakeAll(), (std::vector{1, 4, 2, 3}));
}

TEST_F(FairWindowTest, TheNewest_DoesNotWaitForAllBeforeIt) {
    Add("a", 1, 1000);
    TakeAll();
    Add("a", 1001, 1001);
    now += milliseconds(100);
    EXPECT_EQ(TakeAll(), (std::vector{3, 1001, 4, 998}));
}

TEST_F(FairWindowTest, TheOldest_DoesNotWaitForAStreamOfNewOnes) {
    Add("a", 1, 8);
    EXPECT_EQ(TakeAll(), (std::vector{1, 8, 2, 7}));
    for (const auto& expected : {std::vector{3, 104, 4, 103}, std::vector{5, 208, 6, 207}}) {
        now += milliseconds(100);
        Add("a", expected[1] - 3, expected[1]);
        EXPECT_EQ(TakeAll(), expected);
    }
}

TEST_F(FairWindowTest, Owners_TakeTurns) {
    Add("a", 1, 3);
    Add("b", 11, 12);
    EXPECT_EQ(TakeAll(), (std::vector{1, 11, 3, 12, 2}));
}

TEST_F(FairWindowTest, WhatComesAgain_ComesAfterWhatIsNew) {
    window.Add("a", 1, true);
    window.Add("a", 2, true);
    Add("a", 3, 4);
    window.Remove(1);
    EXPECT_EQ(TakeAll(), (std::vector{3, 4, 2}));
}

TEST_F(FairWindowTest, OneOwner_LeavesHalfOfTheRoom) {
    Add("a", 1, 100);
    EXPECT_EQ(TakeAll().size(), 4u);
    Add("b", 101, 200);
    EXPECT_EQ(TakeAll(), (std::vector{101, 200})) << "and the next leaves half of that";
    Add("c", 201, 300);
    EXPECT_EQ(TakeAll(), std::vector{201});
}

TEST_F(FairWindowTest, WhatIsNoLongerYoung_MakesRoom) {
    Add("a", 1, 100);
    TakeAll();
    EXPECT_EQ(window.Next(), now + milliseconds(100));
    now += milliseconds(99);
    EXPECT_TRUE(TakeAll().empty());
    now += milliseconds(1);
    EXPECT_EQ(TakeAll(), (std::vector{3, 98, 4, 97}));
}

TEST_F(FairWindowTest, OneOwner_HasNoMoreThanHalfUnderWay) {
    Add("a", 1, 100);
    for (int i = 0; i < 20; ++i) {
        TakeAll();
        now += milliseconds(100);
    }
    EXPECT_EQ(window.UnderWay(), 16u);
    Add("b", 101, 200);
    EXPECT_EQ(TakeAll(), (std::vector{101, 200, 102, 199})) << "who comes late finds room";
}

TEST_F(FairWindowTest, WhatIsDone_MakesRoom) {
    Add("a", 1, 100);
    TakeAll();
    window.Remove(2);
    EXPECT_EQ(TakeAll(), std::vector{3});
}

TEST_F(FairWindowTest, WhatIsNoLongerWanted_DoesNotCome) {
    Add("a", 1, 3);
    window.Remove(2);
    window.Remove(77);
    EXPECT_EQ(TakeAll(), (std::vector{1, 3}));
    window.Remove(1);
    window.Remove(3);
    EXPECT_EQ(window.UnderWay(), 0u);
}

TEST_F(FairWindowTest, AnItemTwice_IsThereOnce) {
    Add("a", 1, 1);
    Add("b", 1, 1);
    EXPECT_EQ(TakeAll(), std::vector{1});
}

TEST_F(FairWindowTest, NothingIsTakenBack_WhileThereIsRoom) {
    Add("a", 1, 4);
    TakeAll();
    now += milliseconds(1000);
    Add("a", 5, 6);
    EXPECT_EQ(window.TakeBack(now, milliseconds(300)), std::nullopt);
}

TEST_F(FairWindowTest, TheOldestIsTakenBack_WhenSomebodyWaits) {
    Add("a", 1, 100);
    for (int i = 0; i < 20; ++i) {
        TakeAll();
        now += milliseconds(100);
    }
    EXPECT_EQ(window.TakeBack(now, milliseconds(300)), 1);
    EXPECT_EQ(window.TakeBack(now, milliseconds(300)), std::nullopt) << "room for one";
    EXPECT_EQ(TakeAll(), std::vector{9});
    EXPECT_EQ(window.TakeBack(now, milliseconds(3000)), std::nullopt) << "not old enough";
}

TEST_F(FairWindowTest, WhatBeganLaterThanWhatIsFinished_StaysYoung) {
    Add("a", 1, 100);
    const std::vector<int> first = TakeAll();
    now += milliseconds(90);
    window.Finish(first[0], now);
    const std::vector<int> second = TakeAll();
    ASSERT_EQ(second.size(), 1u);
    now += milliseconds(99);
    EXPECT_TRUE(TakeAll().empty()) << "the first are in a queue that moves";
    EXPECT_EQ(window.Next(), now + milliseconds(1)) << "since the last was finished";
}

TEST_F(FairWindowTest, WhatIsOvertaken_GrowsOld) {
    Add("a", 1, 100);
    const std::vector<int> first = TakeAll();
    now += milliseconds(90);
    window.Finish(first[0], now);
    const std::vector<int> second = TakeAll();
    now += milliseconds(5);
    window.Finish(second.at(0), now);
    EXPECT_EQ(TakeAll().size(), 1u) << "of four three are young still";
    now += milliseconds(5);
    EXPECT_EQ(TakeAll().size(), 3u) << "100 ms of youth are over";
}

TEST_F(FairWindowTest, WhatIsRemoved_IsNotFinished) {
    Add("a", 1, 100);
    const std::vector<int> first = TakeAll();
    now += milliseconds(90);
    window.Remove(first[0]);
    now += milliseconds(10);
    EXPECT_EQ(TakeAll().size(), 4u);
}

}  // namespace
}  // namespace Driverless
