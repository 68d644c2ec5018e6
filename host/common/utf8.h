#pragma once

#include <string>
#include <string_view>

namespace Host {

inline constexpr char32_t kReplacement = 0xFFFD;

// The code point at `at`, which is moved behind it; U+FFFD for whatever is none. Wide text is
// UTF-16 where wchar_t has 16 bits and UTF-32 where it has more.
char32_t NextCodePoint(std::wstring_view text, std::size_t& at);
char32_t NextCodePoint(std::string_view utf8, std::size_t& at);

// Appends a code point as UTF-8.
void AppendUtf8(std::string& text, char32_t codePoint);

// Conversions that never fail: what is ill-formed becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view utf8);

// Fills the `size` bytes at `room` with the text, terminated, and zeros behind it. What does not
// fit is left out, between two characters. Does nothing where there is no room.
void CopyUtf8(std::string_view text, char* room, std::size_t size);

}  // namespace Host
