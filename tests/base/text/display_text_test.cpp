// SPDX-License-Identifier: Apache-2.0

#include "base/text/display_text.h"

#include <gtest/gtest.h>

#include <string>

namespace Base {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(CleanText, LeavesWellFormedTextAsItIs) {
    for (const char* text :
         {"Gr\xC3\xBCn \xE2\x82\xAC \xF0\x9F\x96\xA8", "\xE2\x80\x8D", "\xEF\xBF\xBD"}) {
        EXPECT_EQ(CleanText(text), text);
    }
}

TEST(CleanText, ReplacesWhatIsIllFormed) {
    EXPECT_EQ(CleanText("a\xFF\x62"), "a" + kReplaced + "b");
    EXPECT_EQ(CleanText("\xE2\x82"), kReplaced);
    EXPECT_EQ(CleanText("\xC0\xAF"), kReplaced + kReplaced) << "overlong";
    EXPECT_EQ(CleanText("\xED\xA0\x80"), kReplaced + kReplaced + kReplaced) << "surrogate";
}

TEST(CleanText, TakesTheEffectOutOfControlCharacters) {
    EXPECT_EQ(CleanText("a\x1B[31mb\nc"), "a [31mb c");
    EXPECT_EQ(CleanText(std::string_view("a\0b", 3)), "a b");
    EXPECT_EQ(CleanText("a\xC2\x9B\x62"), "a b") << "C1";
    EXPECT_EQ(CleanText("a\xE2\x80\xA8\x62"), "a b") << "line separator";
    EXPECT_EQ(CleanText("a\xE2\x80\xAE\x62"), "a b") << "right to left";
    EXPECT_EQ(CleanText("a\xE2\x81\xA6\x62"), "a b") << "isolate";
}

TEST(CleanText, TakesBlanksOffTheEnds) {
    EXPECT_EQ(CleanText("  a b \r\n"), "a b");
    EXPECT_EQ(CleanText(" \t "), "");
}

TEST(DisplayText, ShowsThatSomethingWasLeftOut) {
    EXPECT_EQ(DisplayText(" Gr\xC3\xBCn "), " Gr\xC3\xBCn ");
    EXPECT_EQ(DisplayText("a\x1B[31mb\nc"), "a" + kReplaced + "[31mb" + kReplaced + "c");
    EXPECT_EQ(DisplayText("a\xFFz"), "a" + kReplaced + "z");
    for (const char* one : {"\xC2\x9B", "\x7F", "\xD8\x9C", "\xE2\x80\x8B", "\xE2\x80\xAE",
                            "\xE2\x81\xA0", "\xE2\x81\xA6", "\xEF\xBB\xBF", "\xEF\xBF\xB9"}) {
        EXPECT_EQ(DisplayText(one), kReplaced) << testing::PrintToString(one);
    }
}

TEST(DisplayWidth, OfMarksOnTheLetterBefore_IsNone) {
    EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1U) << "combining acute accent";
    EXPECT_EQ(DisplayWidth("\xE0\xB8\x81\xE0\xB8\xB1\xE0\xB8\x99"), 2U) << "Thai";
    EXPECT_EQ(DisplayWidth("\xD8\xA8\xD9\x8B"), 1U) << "Arabic";
    EXPECT_EQ(DisplayWidth("\xD7\x91\xD6\xB0"), 1U) << "Hebrew";
    EXPECT_EQ(DisplayWidth("\xE1\x84\x80\xE1\x85\xA1\xE1\x86\xA8"), 2U) << "a Hangul syllable";
}

TEST(DisplayWidth, OfIdeographsAndEmojis_IsTwo) {
    for (const char* one :
         {"\xE5\xB0\x81", "\xEF\xBC\xA1", "\xE2\x8C\x9A", "\xF0\x9F\x9A\x80", "\xF0\xA0\x80\x80"}) {
        EXPECT_EQ(DisplayWidth(one), 2U) << one;
    }
    EXPECT_EQ(DisplayWidth("\xF0\x9F\x96\xA8"), 1U) << "a printer, which is no emoji by itself";
}

TEST(DisplayWidth, OfOtherText_IsItsLength) {
    EXPECT_EQ(DisplayWidth(""), 0U);
    EXPECT_EQ(DisplayWidth("Gr\xC3\xBCn \xE2\x82\xAC"), 6U);
    EXPECT_EQ(DisplayWidth("\xEF\xBF\xBD"), 1U);
}

TEST(CutToWidth, CutsBetweenCharacters) {
    EXPECT_EQ(CutToWidth("abc", 2), "ab");
    EXPECT_EQ(CutToWidth("abc", 3), "abc");
    EXPECT_EQ(CutToWidth("abc", 9), "abc");
    EXPECT_EQ(CutToWidth("abc", 0), "");
    EXPECT_EQ(CutToWidth("\xE5\xB0\x81\xE7\xAD\x92", 3), "\xE5\xB0\x81")
        << "a wide character is whole";
    EXPECT_EQ(CutToWidth("e\xCC\x81x", 1), "e\xCC\x81") << "a mark stays with its letter";
}

}  // namespace
}  // namespace Base
