// SPDX-License-Identifier: Apache-2.0

#include "base/text/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Base {
namespace {

using namespace std::string_literals;

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

std::u32string Decoded(std::string_view utf8) {
    std::u32string text;
    for (std::size_t at = 0; at < utf8.size();) {
        text += NextCodePoint(utf8, at);
    }
    return text;
}

TEST(Utf8, OfEachCodePoint_IsDecodedAndConvertedBothWays) {
    for (char32_t value = 0; value <= kLastCodePoint; ++value) {
        if (IsSurrogate(value)) {
            continue;
        }
        const Utf8Character character = EncodeUtf8(value);
        ASSERT_EQ(Decoded(character.View()), std::u32string(1, value));
        ASSERT_EQ(ToUtf8(FromUtf8(character.View())), character.View())
            << std::hex << static_cast<unsigned>(value);
        ASSERT_TRUE(IsUtf8(character.View()));
    }
    EXPECT_EQ(EncodeUtf8(U'\u20AC').View(), "\xE2\x82\xAC");
    EXPECT_EQ(FromUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"), L"a\u00E9\u20AC\U0001F600z");
}

TEST(Utf8, KeepsEmbeddedNuls) {
    EXPECT_EQ(FromUtf8("a\0b"s), L"a\0b"s);
    EXPECT_EQ(ToUtf8(L"a\0b"s), "a\0b"s);
}

TEST(Utf8, OfNoCodePoint_IsTheReplacement) {
    for (const char32_t value : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(EncodeUtf8(value).View(), "\xEF\xBF\xBD") << static_cast<unsigned>(value);
    }
}

// The Unicode standard's own examples (chapter 3, "U+FFFD Substitution of Maximal Subparts"), and
// others with the same answers as a decoder that follows it.
TEST(IllFormedUtf8, HasOneReplacementForEachBeginOfACharacter) {
    const std::pair<std::string, std::u32string> cases[] = {
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
         U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
         U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", U"\uFFFD\uFFFD\uFFFD\uFFFDA"},
        {"\xC3", U"\uFFFD"},
        {"\xE2\x82", U"\uFFFD"},
        {"\xE2\x82z", U"\uFFFDz"},
        {"\xF0\x9F\x98", U"\uFFFD"},
        {"a\x80z", U"a\uFFFDz"},
        {"\xF5\xF8\xFE", U"\uFFFD\uFFFD\uFFFD"},
        {"\xC1\xBF", U"\uFFFD\uFFFD"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(Decoded(text), expected) << testing::PrintToString(text);
        EXPECT_FALSE(IsUtf8(text)) << testing::PrintToString(text);
    }
}

TEST(IllFormedUtf8, OfAnyThreeBytes_IsReadToItsEnd) {
    for (unsigned bytes = 0; bytes < 0x1000000; bytes += 257) {
        const std::string text{static_cast<char>(bytes >> 16), static_cast<char>(bytes >> 8),
                               static_cast<char>(bytes)};
        const std::string again = ToUtf8(FromUtf8(text));
        ASSERT_TRUE(IsUtf8(again)) << bytes;
        ASSERT_EQ(again == text, IsUtf8(text)) << bytes;
    }
}

TEST(Utf8, OfAReplacementItself_IsWellFormed) {
    EXPECT_TRUE(IsUtf8("a\xEF\xBF\xBD"));
    EXPECT_TRUE(IsUtf8(""));
    EXPECT_FALSE(IsUtf8("\xEF\xBF"));
}

TEST(WideText, WithLoneSurrogates_HasAReplacementForEach) {
    EXPECT_EQ(ToUtf8(std::u16string{u'a', 0xD83D, 0xDE00, u'z'}), "a\xF0\x9F\x98\x80z");
    EXPECT_EQ(ToUtf8(std::u16string{0xD800, 0xD800, u'z'}), "\xEF\xBF\xBD\xEF\xBF\xBDz");
    EXPECT_EQ(ToUtf8(std::u16string{0xDC00, 0xD800}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{L'a', static_cast<wchar_t>(0xDFFF)}), "a\xEF\xBF\xBD");
}

// A secret's conversion must not leave copies in memory.
TEST(FromUtf8, AllocatesOnce) {
    const std::string text(1000, 'a');
    const std::wstring wide = FromUtf8(text);
    EXPECT_EQ(wide.capacity(), std::wstring(FromUtf8(text)).capacity());
    std::wstring reserved;
    reserved.reserve(text.size());
    EXPECT_EQ(wide.capacity(), reserved.capacity());
}

TEST(CutUtf8, CutsNoCharacter) {
    EXPECT_EQ(CutUtf8("abc", 9), "abc");
    EXPECT_EQ(CutUtf8("abc", 3), "abc");
    EXPECT_EQ(CutUtf8("abc", 2), "ab");
    EXPECT_EQ(CutUtf8("a\xC3\xBC", 2), "a");
    EXPECT_EQ(CutUtf8("\xF0\x9F\x96\xA8", 3), "");
    EXPECT_EQ(CutUtf8("abc", 0), "");
    EXPECT_EQ(CutUtf8("", 0), "");
}

TEST(CopyUtf8, FillsTheRoomAndCutsBetweenCharacters) {
    const std::string text = "ab\xE2\x82\xAC";  // two characters, and one of three bytes
    for (const auto& [size, expected] :
         {std::pair<std::size_t, std::string>{8, text}, {6, text}, {5, "ab"}, {3, "ab"}, {1, ""}}) {
        std::string room(size, 'x');
        CopyUtf8(text, room.data(), room.size());
        EXPECT_EQ(room, expected + std::string(size - expected.size(), '\0')) << size;
    }
    char untouched = 'x';
    CopyUtf8(text, &untouched, 0);
    EXPECT_EQ(untouched, 'x');
    CopyUtf8(text, nullptr, 8);
}

}  // namespace
}  // namespace Base
