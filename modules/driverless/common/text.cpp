// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/common/text.h"

#include <algorithm>
#include <cstdint>

namespace Driverless {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Character {
    std::size_t length;  // in bytes
    bool wellFormed;
    std::uint32_t code;
};

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The sequence length that a first byte announces; 0 for an invalid first byte.
std::size_t AnnouncedLength(unsigned char first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return 2;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 3;
    }
    return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

bool IsCharacter(std::uint32_t code, std::size_t length) {
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return !overlong && !surrogate && code <= 0x10FFFF;
}

Character FirstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = AnnouncedLength(first);
    if (length == 0 || length > text.size()) {
        return {1, false, 0};
    }
    std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) {
            return {1, false, 0};
        }
        code = (code << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    return IsCharacter(code, length) ? Character{length, true, code} : Character{1, false, 0};
}

bool IsControl(std::uint32_t code) {
    const bool lineOrParagraph = code == 0x2028 || code == 0x2029;
    const bool direction = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || lineOrParagraph || direction;
}

char Byte(std::uint32_t value) {
    return static_cast<char>(static_cast<unsigned char>(value));
}

void Append(std::string& utf8, std::uint32_t code) {
    if (code < 0x80) {
        utf8 += Byte(code);
    } else if (code < 0x800) {
        utf8 += Byte(0xC0U | (code >> 6U));
        utf8 += Byte(0x80U | (code & 0x3FU));
    } else if (code < 0x10000 && IsCharacter(code, 3)) {
        utf8 += Byte(0xE0U | (code >> 12U));
        utf8 += Byte(0x80U | ((code >> 6U) & 0x3FU));
        utf8 += Byte(0x80U | (code & 0x3FU));
    } else if (code >= 0x10000 && IsCharacter(code, 4)) {
        utf8 += Byte(0xF0U | (code >> 18U));
        utf8 += Byte(0x80U | ((code >> 12U) & 0x3FU));
        utf8 += Byte(0x80U | ((code >> 6U) & 0x3FU));
        utf8 += Byte(0x80U | (code & 0x3FU));
    } else {
        utf8 += kReplacement;
    }
}

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

std::string CleanText(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (!character.wellFormed) {
            clean += kReplacement;
        } else if (IsControl(character.code)) {
            clean += ' ';
        } else {
            clean += text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
    return Trimmed(clean);
}

std::string_view CutText(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    while (size > 0 && IsContinuation(text[size])) {
        --size;
    }
    return text.substr(0, size);
}

void PutText(std::span<char> field, std::string_view text) {
    const std::string_view cut = CutText(text, field.size() - 1);
    std::fill(std::copy(cut.begin(), cut.end(), field.begin()), field.end(), '\0');
}

std::string_view FieldView(std::span<const char> field) {
    return {field.begin(), std::find(field.begin(), field.end(), '\0')};
}

std::string FieldText(std::span<const char> field) {
    return std::string(FieldView(field));
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (!character.wellFormed) {
            return false;
        }
        text.remove_prefix(character.length);
    }
    return true;
}

std::string ToUtf8(std::wstring_view text) {
    std::string utf8;
    for (const wchar_t character : text) {
        Append(utf8, static_cast<std::uint32_t>(character));
    }
    return utf8;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

}  // namespace Driverless
