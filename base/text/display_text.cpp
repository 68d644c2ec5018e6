// SPDX-License-Identifier: Apache-2.0

#include "base/text/display_text.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "base/text/characters.h"
#include "base/text/trimmed.h"
#include "base/text/utf8.h"
#include "base/text/width_table.h"

namespace Base {

namespace {

bool IsIn(std::span<const CharacterRange> ranges, char32_t codePoint) {
    const auto next = std::upper_bound(
        ranges.begin(), ranges.end(), codePoint,
        [](char32_t value, const CharacterRange& range) { return value < range.first; });
    return next != ranges.begin() && codePoint <= std::prev(next)->last;
}

std::size_t WidthOf(char32_t codePoint) {
    return IsIn(kNoColumn, codePoint) ? 0 : IsIn(kTwoColumns, codePoint) ? 2 : 1;
}

}  // namespace

std::string CleanText(std::string_view text) {
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t codePoint = NextCodePoint(text, at);
        const bool isBlank = BreaksLine(codePoint) || ChangesDirection(codePoint);
        clean += EncodeUtf8(isBlank ? U' ' : codePoint).View();
    }
    return std::string(Trimmed(clean, " "));
}

std::string DisplayText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t codePoint = NextCodePoint(text, at);
        const bool isReplaced =
            BreaksLine(codePoint) || ChangesDirection(codePoint) || IsInvisible(codePoint);
        shown += EncodeUtf8(isReplaced ? kReplacement : codePoint).View();
    }
    return shown;
}

std::size_t DisplayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        width += WidthOf(NextCodePoint(text, at));
    }
    return width;
}

std::string_view CutToWidth(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    for (std::size_t at = 0, width = 0; at < text.size(); end = at) {
        width += WidthOf(NextCodePoint(text, at));
        if (width > columns) {
            break;
        }
    }
    return text.substr(0, end);
}

}  // namespace Base
