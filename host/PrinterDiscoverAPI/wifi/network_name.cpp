// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/network_name.h"

#include <algorithm>

#include "host/common/utf8.h"

namespace Host {

namespace {

bool IsUtf8(std::string_view bytes) {
    return ToUtf8(FromUtf8(bytes)) == bytes;
}

bool IsControlCharacter(wchar_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

bool IsText(std::string_view name) {
    if (!IsUtf8(name)) {
        return false;
    }
    const std::wstring text = FromUtf8(name);
    return std::none_of(text.begin(), text.end(), IsControlCharacter);
}

std::wstring NetworkNameText(std::string_view name) {
    if (IsUtf8(name)) {
        return FromUtf8(name);
    }
    std::wstring text;
    for (const char byte : name) {
        text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    }
    return text;
}

std::optional<std::string> StrictUtf8(std::wstring_view text) {
    std::string utf8 = ToUtf8(text);
    if (FromUtf8(utf8) != text) {
        return std::nullopt;
    }
    return utf8;
}

std::string_view BroadcastName(std::string_view name) {
    return name.find_first_not_of('\0') == std::string_view::npos ? std::string_view() : name;
}

}  // namespace Host
