// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

namespace {

int testsOfThisProcess = 0;

TEST(OwnProcess, IsThatOfOneTest) {
    EXPECT_EQ(++testsOfThisProcess, 1);
}

TEST(OwnProcess, IsNotThatOfAnother) {
    EXPECT_EQ(++testsOfThisProcess, 1);
}

// Run only to see that the program fails with it.
TEST(OwnProcess, DISABLED_Fails) {
    FAIL();
}

}  // namespace
