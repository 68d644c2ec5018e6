// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace App {

namespace {

struct Character {
    char32_t value;      // U+FFFD for an ill-formed sequence
    std::size_t length;  // in bytes, at least 1
};

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementText = "\xEF\xBF\xBD";

// The first character of `text`, which must not be empty.
Character FirstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
        return {static_cast<char32_t>(lead), 1};
    }
    const std::size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    if (length == 0) {
        return {kReplacement, 1};
    }
    char32_t value = lead & (0xFFU >> (length + 1));
    for (std::size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0U) != 0x80U) {
            return {kReplacement, at};
        }
        value = (value << 6) | (byte(at) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value < 0xE000;
    return {value < smallest[length] || surrogate || value > 0x10FFFF ? kReplacement : value,
            length};
}

using Range = std::pair<char32_t, char32_t>;

template <std::size_t Count>
bool IsIn(const std::array<Range, Count>& ranges, char32_t value) {
    return std::any_of(ranges.begin(), ranges.end(), [value](const Range& range) {
        return value >= range.first && value <= range.second;
    });
}

// Control characters, line and paragraph separators, marks and overrides of direction, and other
// invisible characters.
constexpr std::array kSteering{Range{0x00, 0x1F},     Range{0x7F, 0x9F},     Range{0x061C, 0x061C},
                               Range{0x200B, 0x200F}, Range{0x2028, 0x202E}, Range{0x2060, 0x206F},
                               Range{0xFEFF, 0xFEFF}, Range{0xFFF9, 0xFFFB}};

constexpr std::array kCombining{Range{0x0300, 0x036F}, Range{0x1AB0, 0x1AFF},
                                Range{0x1DC0, 0x1DFF}, Range{0x20D0, 0x20FF},
                                Range{0xFE00, 0xFE0F}, Range{0xFE20, 0xFE2F}};

constexpr std::array kWide{Range{0x1100, 0x115F},   Range{0x2E80, 0xA4CF},  Range{0xA960, 0xA97F},
                           Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},  Range{0xFE30, 0xFE6F},
                           Range{0xFF01, 0xFF60},   Range{0xFFE0, 0xFFE6},  Range{0x1F300, 0x1F64F},
                           Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD}};

// Appends UTF-16 if wide characters have 16 bits.
void AppendWide(std::wstring& wide, char32_t value) {
    constexpr char32_t firstBeyond = 0x10000;
    if (sizeof(wchar_t) == 2 && value >= firstBeyond) {
        wide += static_cast<wchar_t>(0xD800 + ((value - firstBeyond) >> 10));
        wide += static_cast<wchar_t>(0xDC00 + ((value - firstBeyond) & 0x3FF));
    } else {
        wide += static_cast<wchar_t>(value);
    }
}

std::size_t WidthOf(char32_t value) {
    return IsIn(kCombining, value) ? 0 : IsIn(kWide, value) ? 2 : 1;
}

}  // namespace

std::string DisplayText(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (character.value == kReplacement || IsIn(kSteering, character.value)) {
            shown += kReplacementText;
        } else {
            shown += text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
    return shown;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        if (character.value == kReplacement &&
            text.substr(0, character.length) != kReplacementText) {
            return false;
        }
        text.remove_prefix(character.length);
    }
    return true;
}

std::optional<std::wstring> Widen(std::string_view text) {
    if (!IsUtf8(text)) {
        return std::nullopt;
    }
    std::wstring wide;
    wide.reserve(text.size());  // no reallocation: it would leave a copy of a pass phrase
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        AppendWide(wide, character.value);
        text.remove_prefix(character.length);
    }
    return wide;
}

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const Character character = FirstCharacter(text);
        width += WidthOf(character.value);
        text.remove_prefix(character.length);
    }
    return width;
}

std::string_view CutToWidth(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    for (std::size_t width = 0; end < text.size();) {
        const Character character = FirstCharacter(text.substr(end));
        width += WidthOf(character.value);
        if (width > columns) {
            break;
        }
        end += character.length;
    }
    return text.substr(0, end);
}

}  // namespace App
