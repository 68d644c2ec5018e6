// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/json_numbers.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace PrinterUtil {

namespace {

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at])) {
        ++at;
    }
    return at;
}

// The end of the number that starts at `at`; `at` when there is no number.
std::size_t NumberEnd(std::string_view text, std::size_t at) {
    const auto isOneOf = [text](std::size_t place, std::string_view characters) {
        return place < text.size() && characters.find(text[place]) != std::string_view::npos;
    };
    const std::size_t digits = at + (isOneOf(at, "-") ? 1U : 0U);
    std::size_t end = SkipDigits(text, digits);
    if (end == digits || (text[digits] == '0' && end > digits + 1)) {
        return at;
    }
    if (isOneOf(end, ".") && SkipDigits(text, end + 1) > end + 1) {
        end = SkipDigits(text, end + 1);
    }
    if (isOneOf(end, "eE")) {
        const std::size_t exponent = end + (isOneOf(end + 1, "+-") ? 2U : 1U);
        end = SkipDigits(text, exponent) > exponent ? SkipDigits(text, exponent) : end;
    }
    return end;
}

std::size_t StringEnd(std::string_view text, std::size_t at) {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\') {
            ++at;
        }
    }
    return std::min(at + 1, text.size());
}

bool IsHuge(std::string_view number) {
    double value = 0;
    return std::from_chars(number.data(), number.data() + number.size(), value).ec ==
           std::errc::result_out_of_range;
}

}  // namespace

std::string WithoutHugeNumbers(std::string text) {
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '"') {
            at = StringEnd(text, at);
            continue;
        }
        const std::size_t end = NumberEnd(text, at);
        if (end > at && IsHuge(std::string_view(text).substr(at, end - at))) {
            std::fill(text.begin() + static_cast<std::ptrdiff_t>(at),
                      text.begin() + static_cast<std::ptrdiff_t>(end), ' ');
            text[at] = '0';
        }
        at = std::max(end, at + 1);
    }
    return text;
}

}  // namespace PrinterUtil
