// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace Host {

inline constexpr char32_t kReplacement = 0xFFFD;

// Returns the code point at `at` and moves `at` behind it; U+FFFD for ill-formed text. Wide text is
// UTF-16 if wchar_t has 16 bits, else UTF-32.
char32_t NextCodePoint(std::wstring_view text, std::size_t& at);
char32_t NextCodePoint(std::string_view utf8, std::size_t& at);

// Appends a code point as UTF-8.
void AppendUtf8(std::string& text, char32_t codePoint);

// Conversions that never fail: ill-formed text becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view utf8);

// Copies the text, terminated, to the `size` bytes at `room` and fills the rest with zeros.
// Truncates between two characters if the text is too long. Does nothing if `size` is 0.
void CopyUtf8(std::string_view text, char* room, std::size_t size);

}  // namespace Host
