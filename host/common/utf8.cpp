// SPDX-License-Identifier: Apache-2.0

#include "host/common/utf8.h"

#include <algorithm>
#include <type_traits>

namespace Host {

namespace {

constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

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

char32_t Unit(char unit) {
    return static_cast<unsigned char>(unit);
}

char Byte(char32_t bits) {
    return static_cast<char>(static_cast<unsigned char>(bits));
}

// The lead byte of a UTF-8 sequence: the number of following bytes, the bits of the lead byte that
// count, and the smallest code point of this length.
struct Lead {
    int following;
    char32_t bits;
    char32_t smallest;
};

Lead LeadOf(char32_t unit) {
    if (unit < 0x80) {
        return {0, unit, 0};
    }
    if (unit >= 0xC2 && unit < 0xE0) {
        return {1, unit & 0x1F, 0x80};
    }
    if (unit >= 0xE0 && unit < 0xF0) {
        return {2, unit & 0x0F, 0x800};
    }
    if (unit >= 0xF0 && unit < 0xF5) {
        return {3, unit & 0x07, 0x10000};
    }
    return {0, kReplacement, 0};
}

void AppendWide(std::wstring& text, char32_t codePoint) {
    if (kWideIsUtf16 && codePoint > 0xFFFF) {
        text += static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10));
        text += static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    } else {
        text += static_cast<wchar_t>(codePoint);
    }
}

}  // namespace

char32_t NextCodePoint(std::wstring_view text, std::size_t& at) {
    const char32_t unit = Unit(text[at++]);
    if (kWideIsUtf16 && IsLeadSurrogate(unit) && at < text.size() &&
        IsTrailSurrogate(Unit(text[at]))) {
        return 0x10000 + ((unit - 0xD800) << 10) + (Unit(text[at++]) - 0xDC00);
    }
    return IsCodePoint(unit) ? unit : kReplacement;
}

char32_t NextCodePoint(std::string_view utf8, std::size_t& at) {
    const Lead lead = LeadOf(Unit(utf8[at++]));
    char32_t codePoint = lead.bits;
    for (int byte = 0; byte < lead.following; ++byte) {
        if (at == utf8.size() || (Unit(utf8[at]) & 0xC0) != 0x80) {
            return kReplacement;
        }
        codePoint = (codePoint << 6) | (Unit(utf8[at++]) & 0x3F);
    }
    return IsCodePoint(codePoint) && codePoint >= lead.smallest ? codePoint : kReplacement;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
    if (codePoint < 0x80) {
        text += Byte(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        text += Byte(0xC0 | (codePoint >> 6));
    } else {
        if (codePoint < 0x10000) {
            text += Byte(0xE0 | (codePoint >> 12));
        } else {
            text += Byte(0xF0 | (codePoint >> 18));
            text += Byte(0x80 | ((codePoint >> 12) & 0x3F));
        }
        text += Byte(0x80 | ((codePoint >> 6) & 0x3F));
    }
    text += Byte(0x80 | (codePoint & 0x3F));
}

std::string ToUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        AppendUtf8(utf8, NextCodePoint(text, at));
    }
    return utf8;
}

std::wstring FromUtf8(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        AppendWide(text, NextCodePoint(utf8, at));
    }
    return text;
}

void CopyUtf8(std::string_view text, char* room, std::size_t size) {
    if (room == nullptr || size == 0) {
        return;
    }
    constexpr auto continues = [](char byte) { return (byte & 0xC0) == 0x80; };
    std::size_t length = std::min(text.size(), size - 1);
    while (length > 0 && length < text.size() && continues(text[length])) {
        --length;
    }
    std::fill(std::copy_n(text.data(), length, room), room + size, '\0');
}

}  // namespace Host
