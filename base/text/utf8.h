// SPDX-License-Identifier: Apache-2.0

#pragma once

// UTF-8, and wide text: UTF-16 if wchar_t has 16 bits, else UTF-32.
//
// Ill-formed text becomes U+FFFD. In UTF-8 each longest part that begins a character counts once,
// and so does every other byte, as the Unicode standard recommends: "\xE2\x82" is one U+FFFD,
// "\xC0\xAF" are two, and a surrogate in three bytes is three. In wide text each unit counts once.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace Base {

inline constexpr char32_t kReplacement = 0xFFFD;

// Returns the code point at `at`, which must be in the text, and moves `at` behind it.
char32_t NextCodePoint(std::string_view utf8, std::size_t& at);
char32_t NextCodePoint(std::wstring_view text, std::size_t& at);
char32_t NextCodePoint(std::u16string_view text, std::size_t& at);

// The UTF-8 of one code point, without an allocation.
struct Utf8Character {
    std::array<char, 4> bytes;
    std::size_t length;

    std::string_view View() const { return {bytes.data(), length}; }
};

// The UTF-8 of U+FFFD if the value is not a code point of text.
Utf8Character EncodeUtf8(char32_t codePoint);

bool IsUtf8(std::string_view text);

std::string ToUtf8(std::wstring_view text);
std::string ToUtf8(std::u16string_view text);

// Allocates once: a reallocation would leave a copy of a secret in memory.
std::wstring FromUtf8(std::string_view utf8);

// The longest prefix of UTF-8 text with at most `size` bytes and only whole characters.
std::string_view CutUtf8(std::string_view text, std::size_t size);

// Copies the text, terminated, to the `size` bytes at `room` and fills the rest with zeros. A
// longer text is cut between two characters. Does nothing if `room` is null or `size` is 0.
void CopyUtf8(std::string_view text, char* room, std::size_t size);

}  // namespace Base
