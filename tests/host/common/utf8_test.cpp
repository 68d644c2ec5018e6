// SPDX-License-Identifier: Apache-2.0

#include "base/text/utf8.h"
#include "host/common/paths.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "platform/PrinterUtil/PrinterUtil.h"

namespace {

using PrinterUtil::WStringToString;

constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;
const std::string kReplacement = "\xEF\xBF\xBD";

std::wstring Units(std::initializer_list<unsigned long> units) {
    std::wstring text;
    for (const unsigned long unit : units) {
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

}  // namespace

TEST(WStringToString, LeavesPlainTextAsItIs) {
    EXPECT_EQ(WStringToString(L""), "");
    EXPECT_EQ(WStringToString(L"USB001 \\\\.\\pipe"), "USB001 \\\\.\\pipe");
}

TEST(WStringToString, GivesUtf8OfEveryLength) {
    EXPECT_EQ(WStringToString(L"\u007F\u0080\u07FF\u0800\uFFFF"),
              "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(WStringToString(L"\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(WStringToString, KeepsEmbeddedNuls) {
    EXPECT_EQ(WStringToString(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(WStringToString, ReplacesLoneSurrogates) {
    EXPECT_EQ(WStringToString(Units({'a', 0xD800, 'b'})), "a" + kReplacement + "b");
    EXPECT_EQ(WStringToString(Units({0xDFFF})), kReplacement);
    EXPECT_EQ(WStringToString(Units({'a', 0xDBFF})), "a" + kReplacement);
    EXPECT_EQ(WStringToString(Units({0xD800, 0xD800})), kReplacement + kReplacement);
    EXPECT_EQ(WStringToString(Units({0xDC00, 0xD800})), kReplacement + kReplacement);
}

TEST(WStringToString, TakesASurrogatePairForOneCharacterWhereWideTextIsUtf16Only) {
    EXPECT_EQ(WStringToString(Units({0xD83D, 0xDE00})),
              kWideIsUtf16 ? "\xF0\x9F\x98\x80" : kReplacement + kReplacement);
}

TEST(WStringToString, ReplacesWhatIsBeyondTheLastCodePoint) {
    if (!kWideIsUtf16) {
        EXPECT_EQ(WStringToString(Units({0x110000})), kReplacement);
        EXPECT_EQ(WStringToString(Units({0x7FFFFFFF})), kReplacement);
        EXPECT_EQ(WStringToString(Units({0xFFFFFFFF})), kReplacement);
    }
    EXPECT_EQ(WStringToString(Units({0xFFFF})), "\xEF\xBF\xBF");
}

TEST(WStringToString, TakesAnyUnit) {
    for (unsigned long unit = 0; unit <= 0xFFFF; ++unit) {
        const std::string text = WStringToString(Units({unit}));
        ASSERT_FALSE(text.empty());
        ASSERT_EQ(Base::ToUtf8(Base::FromUtf8(text)), text) << unit;
    }
}

TEST(Paths, GoToUtf8AndBack) {
    const std::string text = "folder-\xC3\xA9\xE2\x82\xAC";
    EXPECT_EQ(Host::PathToUtf8(Host::PathFromUtf8(text)), text);
}
