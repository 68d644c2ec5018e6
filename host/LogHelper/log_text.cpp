#include "host/LogHelper/log_text.h"

#include <cstdio>

#include "host/common/utf8.h"

namespace LogHelper {

namespace {

constexpr std::wstring_view kPassPhrase = L"pwd";
constexpr std::wstring_view kNetworkName = L"ssid";
constexpr std::size_t kLongestNetworkName = 128;
constexpr std::wstring_view kMask = L"***";

void MaskFrom(std::wstring& line, std::size_t begin) {
    // The value may hold parentheses of its own: the last one opens the location.
    const std::size_t location = line.rfind(L'(');
    if (location == std::wstring::npos || location < begin) {
        line.replace(begin, std::wstring::npos, kMask);
    } else {
        line.replace(begin, location - begin, kMask);
    }
}

bool BreaksLines(char32_t codePoint) {
    const bool control = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
    return control || codePoint == 0x2028 || codePoint == 0x2029;
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

}  // namespace

void MaskSecrets(std::wstring& line) {
    if (line.starts_with(kPassPhrase)) {
        MaskFrom(line, kPassPhrase.size());
        return;
    }
    // A network name that fills its field runs on into the pass phrase behind it.
    const std::size_t nameEnd = kNetworkName.size() + kLongestNetworkName;
    const std::size_t location = line.rfind(L'(');
    if (line.starts_with(kNetworkName) && line.size() > nameEnd && location > nameEnd) {
        MaskFrom(line, nameEnd);
    }
}

std::string OneLine(std::wstring_view line) {
    std::string text;
    text.reserve(line.size());
    for (std::size_t at = 0; at < line.size();) {
        const char32_t codePoint = Host::NextCodePoint(line, at);
        if (BreaksLines(codePoint)) {
            AppendEscaped(text, codePoint);
        } else {
            Host::AppendUtf8(text, codePoint);
        }
    }
    return text;
}

}  // namespace LogHelper
