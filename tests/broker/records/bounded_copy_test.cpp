// SPDX-License-Identifier: Apache-2.0

#include "broker/records/bounded_copy.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

using Broker::BoundedCopy;
using Broker::BoundedText;

class BoundedCopyTest : public testing::Test {
protected:
    void SetUp() override { errno = -1; }

    std::string Destination() const { return {destination, sizeof destination}; }

    char destination[8] = {'.', '.', '.', '.', '.', '.', '.', '.'};
};

TEST_F(BoundedCopyTest, CopiesExactlyTheCount) {
    EXPECT_EQ(BoundedCopy(destination, 8, "abcdefgh", 3), 0);
    EXPECT_EQ(Destination(), "abc.....");
    EXPECT_EQ(errno, -1);
}

TEST_F(BoundedCopyTest, CopiesAsMuchAsTheCapacityWithoutATerminator) {
    EXPECT_EQ(BoundedCopy(destination, 8, "abcdefgh", 8), 0);
    EXPECT_EQ(Destination(), "abcdefgh");
}

TEST_F(BoundedCopyTest, CopiesZeroBytesLikeAnyOther) {
    EXPECT_EQ(BoundedCopy(destination, 8, "a\0b\0", 4), 0);
    EXPECT_EQ(Destination(), std::string("a\0b\0....", 8));
}

TEST_F(BoundedCopyTest, OfNothingTouchesNothing) {
    EXPECT_EQ(BoundedCopy(destination, 8, "abc", 0), 0);
    EXPECT_EQ(BoundedCopy(destination, 0, "abc", 0), 0);
    EXPECT_EQ(Destination(), "........");
    EXPECT_EQ(errno, -1);
}

TEST_F(BoundedCopyTest, ToNowhereIsInvalid) {
    EXPECT_EQ(BoundedCopy(nullptr, 8, "abc", 3), 22);
    EXPECT_EQ(errno, 22);
}

TEST_F(BoundedCopyTest, ToNowhereIsInvalidWhateverElseIsWrong) {
    EXPECT_EQ(BoundedCopy(nullptr, 2, "abc", 3), 22);
    EXPECT_EQ(BoundedCopy(nullptr, 2, nullptr, 3), 22);
    EXPECT_EQ(BoundedCopy(nullptr, 0, nullptr, 0), 22);
    EXPECT_EQ(errno, 22);
}

TEST_F(BoundedCopyTest, FromNowhereIsInvalidAndZeroesTheCapacity) {
    EXPECT_EQ(BoundedCopy(destination, 5, nullptr, 3), 22);
    EXPECT_EQ(Destination(), std::string("\0\0\0\0\0...", 8));
    EXPECT_EQ(errno, 22);
}

TEST_F(BoundedCopyTest, OfTooMuchIsOutOfRangeAndZeroesTheCapacity) {
    EXPECT_EQ(BoundedCopy(destination, 5, "abcdefgh", 6), 34);
    EXPECT_EQ(Destination(), std::string("\0\0\0\0\0...", 8));
    EXPECT_EQ(errno, 34);
}

TEST_F(BoundedCopyTest, OfTooMuchFromNowhereIsInvalidRatherThanOutOfRange) {
    EXPECT_EQ(BoundedCopy(destination, 5, nullptr, 6), 22);
    EXPECT_EQ(Destination(), std::string("\0\0\0\0\0...", 8));
    EXPECT_EQ(errno, 22);
}

TEST_F(BoundedCopyTest, OfAFieldCopiesItWhole) {
    const char source[8] = {'a', '\0', 'c', 'd', 'e', 'f', 'g', 'h'};
    EXPECT_EQ(BoundedCopy(destination, source), 0);
    EXPECT_EQ(Destination(), std::string("a\0cdefgh", 8));
}

TEST_F(BoundedCopyTest, OfATextCopiesItWithItsTerminatorAndNothingBehindIt) {
    EXPECT_EQ(BoundedText(destination, 8, "abc"), 0);
    EXPECT_EQ(Destination(), std::string("abc\0....", 8));
    EXPECT_EQ(BoundedText(destination, ""), 0);
    EXPECT_EQ(Destination(), std::string("\0bc\0....", 8));
    EXPECT_EQ(errno, -1);
}

TEST_F(BoundedCopyTest, OfATextTakesOneThatFillsTheFieldWithItsTerminator) {
    EXPECT_EQ(BoundedText(destination, "abcdefg"), 0);
    EXPECT_EQ(Destination(), std::string("abcdefg\0", 8));
}

TEST_F(BoundedCopyTest, OfATextThatDoesNotFitLeavesTheFieldEmpty) {
    EXPECT_EQ(BoundedText(destination, "abcdefgh"), 34);
    EXPECT_EQ(destination[0], '\0');
    EXPECT_EQ(errno, 34);
    destination[0] = '.';
    EXPECT_EQ(BoundedText(destination, 1, "a"), 34);
    EXPECT_EQ(Destination()[0], '\0');
}

TEST_F(BoundedCopyTest, OfNoTextLeavesTheFieldEmpty) {
    EXPECT_EQ(BoundedText(destination, 8, nullptr), 22);
    EXPECT_EQ(destination[0], '\0');
    EXPECT_EQ(errno, 22);
}

TEST_F(BoundedCopyTest, OfATextToNowhereIsInvalid) {
    EXPECT_EQ(BoundedText(nullptr, 8, "abc"), 22);
    EXPECT_EQ(errno, 22);
    errno = -1;
    EXPECT_EQ(BoundedText(destination, 0, "abc"), 22);
    EXPECT_EQ(errno, 22);
    EXPECT_EQ(Destination(), "........");
}

}  // namespace
