// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <array>

#include "modules/driverless/common/text.h"

namespace Driverless {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(CleanText, LeavesWellFormedTextAsItIs) {
    EXPECT_EQ(CleanText("Gr\xC3\xBCn \xE2\x82\xAC \xF0\x9F\x96\xA8"),
              "Gr\xC3\xBCn \xE2\x82\xAC \xF0\x9F\x96\xA8");
}

TEST(CleanText, ReplacesEachIllFormedByte) {
    EXPECT_EQ(CleanText("a\xFF\x62"), "a" + kReplaced + "b");
    EXPECT_EQ(CleanText("\xC3"), kReplaced);
    EXPECT_EQ(CleanText("\xE2\x82"), kReplaced + kReplaced);
    EXPECT_EQ(CleanText("\xC0\xAF"), kReplaced + kReplaced) << "overlong";
    EXPECT_EQ(CleanText("\xE0\x80\xAF"), kReplaced + kReplaced + kReplaced) << "overlong";
    EXPECT_EQ(CleanText("\xED\xA0\x80"), kReplaced + kReplaced + kReplaced) << "surrogate";
    EXPECT_EQ(CleanText("\xF4\x90\x80\x80"), kReplaced + kReplaced + kReplaced + kReplaced)
        << "beyond the last character";
}

TEST(CleanText, TakesTheEffectOutOfControlCharacters) {
    EXPECT_EQ(CleanText("a\x1B[31mb\nc"), "a [31mb c");
    EXPECT_EQ(CleanText(std::string_view("a\0b", 3)), "a b");
    EXPECT_EQ(CleanText("a\xC2\x9B\x62"), "a b") << "C1";
    EXPECT_EQ(CleanText("a\xE2\x80\xAE\x62"), "a b") << "right to left";
}

TEST(CleanText, TakesBlanksOffTheEnds) {
    EXPECT_EQ(CleanText("  a b \r\n"), "a b");
    EXPECT_EQ(CleanText(" \t "), "");
}

TEST(CutText, CutsNoCharacter) {
    EXPECT_EQ(CutText("abc", 3), "abc");
    EXPECT_EQ(CutText("abc", 2), "ab");
    EXPECT_EQ(CutText("a\xC3\xBC", 2), "a");
    EXPECT_EQ(CutText("\xF0\x9F\x96\xA8", 3), "");
    EXPECT_EQ(CutText("abc", 0), "");
}

TEST(PutText, TerminatesAndClearsTheField) {
    std::array<char, 4> field{'x', 'x', 'x', 'x'};
    PutText(field, "a");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 0, 0, 0}));
    PutText(field, "abcd");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 'b', 'c', 0}));
    PutText(field, "ab\xC3\xBC");
    EXPECT_EQ(field, (std::array<char, 4>{'a', 'b', 0, 0}));
}

TEST(FieldText, EndsAtTheTerminatorOrWithTheField) {
    EXPECT_EQ(FieldText(std::array<char, 3>{'a', 0, 'b'}), "a");
    EXPECT_EQ(FieldText(std::array<char, 3>{'a', 'b', 'c'}), "abc");
}

TEST(LowerCase, KnowsAsciiOnly) {
    EXPECT_EQ(LowerCase("UUID \xC3\x9C"), "uuid \xC3\x9C");
}

}  // namespace
}  // namespace Driverless
