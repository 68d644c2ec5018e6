// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/device_uri.h"

namespace PrinterAdapter {

namespace {

int HexDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return -1;
}

// A percent sign without two hexadecimal digits stays unchanged.
std::string Decoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool hasDigits = text[at] == '%' && at + 2 < text.size();
        const int high = hasDigits ? HexDigit(text[at + 1]) : -1;
        const int low = hasDigits ? HexDigit(text[at + 2]) : -1;
        if (high < 0 || low < 0) {
            decoded += text[at];
        } else {
            decoded += static_cast<char>(static_cast<unsigned char>(high * 16 + low));
            at += 2;
        }
    }
    return decoded;
}

// Removes and returns the text before the first of `ends`.
std::string_view TakeUntil(std::string_view& text, std::string_view ends) {
    const std::string_view taken = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(taken.size());
    return taken;
}

std::string_view HostOf(std::string_view authority) {
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }
    if (authority.starts_with('[')) {
        return authority.substr(1, authority.find(']') - 1);
    }
    return authority.substr(0, authority.find(':'));
}

}  // namespace

std::string DeviceUri::Parameter(std::string_view name) const {
    std::string_view rest = query;
    while (!rest.empty()) {
        const std::string_view parameter = TakeUntil(rest, "&");
        if (!rest.empty()) {
            rest.remove_prefix(1);
        }
        const std::size_t equals = parameter.find('=');
        if (equals != std::string_view::npos && parameter.substr(0, equals) == name) {
            return Decoded(parameter.substr(equals + 1));
        }
    }
    return {};
}

DeviceUri ReadDeviceUri(std::string_view text) {
    DeviceUri uri;
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return uri;
    }
    for (const char letter : text.substr(0, colon)) {
        const bool isCapital = letter >= 'A' && letter <= 'Z';
        uri.scheme += isCapital ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    text.remove_prefix(colon + 1);
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        uri.host = Decoded(HostOf(TakeUntil(text, "/?")));
    }
    if (text.starts_with('/')) {
        text.remove_prefix(1);
    }
    uri.path = Decoded(TakeUntil(text, "?"));
    if (!text.empty()) {
        uri.query = text.substr(1);
    }
    return uri;
}

}  // namespace PrinterAdapter
