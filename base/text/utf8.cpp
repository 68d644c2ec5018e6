// SPDX-License-Identifier: Apache-2.0

#include "base/text/utf8.h"

#include <algorithm>
#include <type_traits>

namespace Base {

namespace {

constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;
constexpr char32_t kFirstBeyondUtf16Unit = 0x10000;

constexpr bool IsLeadSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsTrailSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool IsCodePoint(char32_t value) {
    return value <= 0x10FFFF && !IsLeadSurrogate(value) && !IsTrailSurrogate(value);
}

char32_t Unit(wchar_t unit) {
    return static_cast<std::make_unsigned_t<wchar_t>>(unit);
}

char32_t Unit(char16_t unit) {
    return unit;
}

char32_t Unit(char unit) {
    return static_cast<unsigned char>(unit);
}

bool IsContinuation(char byte) {
    return (Unit(byte) & 0xC0) == 0x80;
}

char Byte(char32_t bits) {
    return static_cast<char>(static_cast<unsigned char>(bits));
}

// What the first byte of a character says about it.
struct Lead {
    int following;   // the number of bytes behind the first
    char32_t bits;   // the first byte's part of the code point
    char32_t least;  // the values that the second byte may have
    char32_t most;
};

// The limits of the second byte exclude overlong forms, surrogates and what is beyond U+10FFFF.
Lead LeadOf(char32_t byte) {
    if (byte < 0x80) {
        return {0, byte, 0, 0};
    }
    if (byte >= 0xC2 && byte < 0xE0) {
        return {1, byte & 0x1F, 0x80, 0xBF};
    }
    if (byte >= 0xE0 && byte < 0xF0) {
        return {2, byte & 0x0F, byte == 0xE0 ? 0xA0U : 0x80U, byte == 0xED ? 0x9FU : 0xBFU};
    }
    if (byte >= 0xF0 && byte < 0xF5) {
        return {3, byte & 0x07, byte == 0xF0 ? 0x90U : 0x80U, byte == 0xF4 ? 0x8FU : 0xBFU};
    }
    return {0, kReplacement, 0, 0};
}

void AppendWide(std::wstring& text, char32_t codePoint) {
    if (kWideIsUtf16 && codePoint >= kFirstBeyondUtf16Unit) {
        text += static_cast<wchar_t>(0xD800 + ((codePoint - kFirstBeyondUtf16Unit) >> 10));
        text += static_cast<wchar_t>(0xDC00 + ((codePoint - kFirstBeyondUtf16Unit) & 0x3FF));
    } else {
        text += static_cast<wchar_t>(codePoint);
    }
}

template <class Character>
char32_t NextWide(std::basic_string_view<Character> text, std::size_t& at) {
    const char32_t unit = Unit(text[at++]);
    if (sizeof(Character) == 2 && IsLeadSurrogate(unit) && at < text.size() &&
        IsTrailSurrogate(Unit(text[at]))) {
        return kFirstBeyondUtf16Unit + ((unit - 0xD800) << 10) + (Unit(text[at++]) - 0xDC00);
    }
    return IsCodePoint(unit) ? unit : kReplacement;
}

template <class Character>
std::string Utf8Of(std::basic_string_view<Character> text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        utf8 += EncodeUtf8(NextWide(text, at)).View();
    }
    return utf8;
}

}  // namespace

char32_t NextCodePoint(std::string_view utf8, std::size_t& at) {
    Lead lead = LeadOf(Unit(utf8[at++]));
    char32_t codePoint = lead.bits;
    for (int byte = 0; byte < lead.following; ++byte) {
        if (at == utf8.size() || Unit(utf8[at]) < lead.least || Unit(utf8[at]) > lead.most) {
            return kReplacement;
        }
        codePoint = (codePoint << 6) | (Unit(utf8[at++]) & 0x3F);
        lead.least = 0x80;
        lead.most = 0xBF;
    }
    return codePoint;
}

char32_t NextCodePoint(std::wstring_view text, std::size_t& at) {
    return NextWide(text, at);
}

char32_t NextCodePoint(std::u16string_view text, std::size_t& at) {
    return NextWide(text, at);
}

Utf8Character EncodeUtf8(char32_t codePoint) {
    const char32_t value = IsCodePoint(codePoint) ? codePoint : kReplacement;
    const auto following = [value](int shift) { return Byte(0x80 | ((value >> shift) & 0x3F)); };
    if (value < 0x80) {
        return {{Byte(value)}, 1};
    }
    if (value < 0x800) {
        return {{Byte(0xC0 | (value >> 6)), following(0)}, 2};
    }
    if (value < 0x10000) {
        return {{Byte(0xE0 | (value >> 12)), following(6), following(0)}, 3};
    }
    return {{Byte(0xF0 | (value >> 18)), following(12), following(6), following(0)}, 4};
}

bool IsUtf8(std::string_view text) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        if (NextCodePoint(text, at) == kReplacement &&
            text.substr(begin, at - begin) != replacement) {
            return false;
        }
    }
    return true;
}

std::string ToUtf8(std::wstring_view text) {
    return Utf8Of(text);
}

std::string ToUtf8(std::u16string_view text) {
    return Utf8Of(text);
}

std::wstring FromUtf8(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        AppendWide(text, NextCodePoint(utf8, at));
    }
    return text;
}

std::string_view CutUtf8(std::string_view text, std::size_t size) {
    std::size_t length = std::min(text.size(), size);
    while (length > 0 && length < text.size() && IsContinuation(text[length])) {
        --length;
    }
    return text.substr(0, length);
}

void CopyUtf8(std::string_view text, char* room, std::size_t size) {
    if (room == nullptr || size == 0) {
        return;
    }
    const std::string_view cut = CutUtf8(text, size - 1);
    std::fill(std::copy(cut.begin(), cut.end(), room), room + size, '\0');
}

}  // namespace Base
