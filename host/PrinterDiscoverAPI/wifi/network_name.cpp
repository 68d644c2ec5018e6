// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/network_name.h"

#include <algorithm>

#include "base/text/characters.h"
#include "base/text/utf8.h"

namespace Host {

namespace {

bool IsControlCharacter(wchar_t character) {
    return Base::IsControl(static_cast<char32_t>(character));
}

}  // namespace

bool IsText(std::string_view name) {
    if (!Base::IsUtf8(name)) {
        return false;
    }
    const std::wstring text = Base::FromUtf8(name);
    return std::none_of(text.begin(), text.end(), IsControlCharacter);
}

std::wstring NetworkNameText(std::string_view name) {
    if (Base::IsUtf8(name)) {
        return Base::FromUtf8(name);
    }
    std::wstring text;
    for (const char byte : name) {
        text += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    }
    return text;
}

std::optional<std::string> StrictUtf8(std::wstring_view text) {
    std::string utf8 = Base::ToUtf8(text);
    if (Base::FromUtf8(utf8) != text) {
        return std::nullopt;
    }
    return utf8;
}

std::string_view BroadcastName(std::string_view name) {
    return name.find_first_not_of('\0') == std::string_view::npos ? std::string_view() : name;
}

}  // namespace Host
