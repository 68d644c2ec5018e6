// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "base/text/characters.h"
#include "base/text/utf8.h"

namespace LogHelper {

namespace {

constexpr std::wstring_view kPassPhrase = L"pwd";
constexpr std::wstring_view kNetworkName = L"ssid";
constexpr std::size_t kLongestNetworkName = 128;
constexpr std::string_view kMask = "***";
constexpr std::string_view kCut = "...";
// The longest text of one line; a longer text is truncated.
constexpr std::size_t kLargestText = std::size_t{256} * 1024;

// The secret that begins at `begin`. It may contain parentheses: the last one opens the location.
Secret SecretFrom(std::wstring_view line, std::size_t begin) {
    const std::size_t location = line.rfind(L'(');
    const bool hasLocation = location != std::wstring_view::npos && location >= begin;
    return {begin, hasLocation ? location : line.size(), true};
}

void AppendEscaped(std::string& text, char32_t codePoint) {
    switch (codePoint) {
        case U'\n':
            text += "\\n";
            return;
        case U'\r':
            text += "\\r";
            return;
        case U'\t':
            text += "\\t";
            return;
        default:
            break;
    }
    char escape[16];
    const char* format = codePoint < 0x100 ? "\\x%02x" : "\\u%04x";
    std::snprintf(escape, sizeof escape, format, static_cast<unsigned>(codePoint));
    text += escape;
}

// Whether all characters are printable ASCII, which needs no escaping. A negative difference sets
// the highest bit; without branches the compiler can vectorise the loop.
bool IsPlain(std::wstring_view piece) {
    constexpr std::uint32_t belowZero = 0x80000000;
    std::uint32_t differences = 0;
    for (const wchar_t unit : piece) {
        const std::uint32_t character = static_cast<char32_t>(unit);
        differences |= (character - 0x20) | (0x7E - character);
    }
    return (differences & belowZero) == 0;
}

void AppendPlain(std::string& text, std::wstring_view piece) {
    const std::size_t size = text.size();
    text.resize(size + piece.size());
    std::transform(piece.begin(), piece.end(), text.data() + size,
                   [](wchar_t character) { return static_cast<char>(character); });
}

void AppendAny(std::string& text, std::wstring_view piece) {
    for (std::size_t at = 0; at < piece.size();) {
        if (text.size() > kLargestText) {
            text += kCut;
            return;
        }
        const char32_t codePoint = Base::NextCodePoint(piece, at);
        if (Base::BreaksLine(codePoint)) {
            AppendEscaped(text, codePoint);
        } else {
            text += Base::EncodeUtf8(codePoint).View();
        }
    }
}

// Nearly every line is plain and is copied in one piece.
void AppendText(std::string& text, std::wstring_view piece) {
    if (piece.size() <= kLargestText && IsPlain(piece)) {
        AppendPlain(text, piece);
    } else {
        AppendAny(text, piece);
    }
}

}  // namespace

Secret SecretIn(std::wstring_view line) {
    if (line.starts_with(kPassPhrase)) {
        return SecretFrom(line, kPassPhrase.size());
    }
    // A network name that fills its field continues into the pass phrase behind it.
    const std::size_t nameEnd = kNetworkName.size() + kLongestNetworkName;
    if (line.starts_with(kNetworkName) && line.size() > nameEnd && line.rfind(L'(') > nameEnd) {
        return SecretFrom(line, nameEnd);
    }
    return {line.size(), line.size(), false};
}

void AppendOneLine(std::string& text, std::wstring_view line, bool showSecrets) {
    const Secret secret = SecretIn(line);
    if (showSecrets || !secret.isThere) {
        AppendText(text, line);
        return;
    }
    AppendText(text, line.substr(0, secret.begin));
    text += kMask;
    AppendText(text, line.substr(secret.end));
}

}  // namespace LogHelper
