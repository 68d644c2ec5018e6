// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_profile.h"

#include <string_view>

#include "base/secret.h"
#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/wifi/network_name.h"

namespace Host {

namespace {

constexpr std::size_t kKeyDigits = 64;

std::wstring Element(std::wstring_view name, std::wstring_view content) {
    std::wstring element = L"<";
    element.append(name).append(L">").append(content).append(L"</");
    return element.append(name).append(L">");
}

// XML cannot contain control characters.
void AppendEscaped(std::wstring& escaped, std::wstring_view text) {
    for (const wchar_t character : text) {
        if (character == L'&') {
            escaped += L"&amp;";
        } else if (character == L'<') {
            escaped += L"&lt;";
        } else if (character == L'>') {
            escaped += L"&gt;";
        } else {
            escaped += character < 0x20 ? L'_' : character;
        }
    }
}

std::wstring Escaped(std::wstring_view text) {
    std::wstring escaped;
    AppendEscaped(escaped, text);
    return escaped;
}

std::wstring Hexadecimal(std::string_view bytes) {
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    std::wstring text;
    for (const char byte : bytes) {
        text += kDigits[static_cast<unsigned char>(byte) >> 4];
        text += kDigits[static_cast<unsigned char>(byte) & 0x0FU];
    }
    return text;
}

struct Method {
    std::wstring_view authentication;
    std::wstring_view encryption;
};

Method MethodOf(const AccessPoint& accessPoint, bool hasPassPhrase) {
    const unsigned protection = accessPoint.protection;
    if (!hasPassPhrase) {
        return (protection & kOpportunistic) != 0 ? Method{L"OWE", L"AES"}
                                                  : Method{L"open", L"none"};
    }
    if ((protection & kWpa2Personal) != 0) {
        return {L"WPA2PSK", L"AES"};
    }
    if ((protection & kWpa3Personal) != 0) {
        return {L"WPA3SAE", L"AES"};
    }
    return {L"WPAPSK", accessPoint.aesWithWpa ? L"AES" : L"TKIP"};
}

// Marks the position of the key; this character cannot occur in XML.
constexpr wchar_t kKeyPlace = L'\1';

std::wstring SharedKey(bool isKey) {
    return Element(L"sharedKey", Element(L"keyType", isKey ? L"networkKey" : L"passPhrase") +
                                     Element(L"protected", L"false") +
                                     Element(L"keyMaterial", std::wstring(1, kKeyPlace)));
}

std::wstring Security(const AccessPoint& accessPoint, std::string_view passPhrase) {
    const Method method = MethodOf(accessPoint, !passPhrase.empty());
    std::wstring settings =
        Element(L"authEncryption", Element(L"authentication", method.authentication) +
                                       Element(L"encryption", method.encryption) +
                                       Element(L"useOneX", L"false"));
    if (!passPhrase.empty()) {
        settings += SharedKey(passPhrase.size() == kKeyDigits);
    }
    return Element(L"MSM", Element(L"security", settings));
}

// Never moves text with the pass phrase: that would leave a copy in memory.
std::wstring WithKey(std::wstring_view profile, std::string_view passPhrase) {
    constexpr std::size_t longestEscape = 5;
    const std::size_t place = profile.find(kKeyPlace);
    if (place == std::wstring_view::npos) {
        return std::wstring(profile);
    }
    std::wstring key = Base::FromUtf8(passPhrase);
    const Base::WipeAtEnd wiped(key);
    std::wstring whole;
    whole.reserve(profile.size() + longestEscape * key.size());
    whole += profile.substr(0, place);
    AppendEscaped(whole, key);
    whole += profile.substr(place + 1);
    return whole;
}

}  // namespace

std::wstring WlanProfile(const AccessPoint& accessPoint, std::string_view passPhrase) {
    const std::wstring name = Element(L"name", Escaped(NetworkNameText(accessPoint.name)));
    const std::wstring ssid = Element(L"SSID", Element(L"hex", Hexadecimal(accessPoint.name)));
    const std::wstring wanted = Element(L"SSIDConfig", ssid + Element(L"nonBroadcast", L"true"));
    const std::wstring connection =
        Element(L"connectionType", L"ESS") + Element(L"connectionMode", L"manual");
    const std::wstring profile =
        L"<?xml version=\"1.0\"?>"
        L"<WLANProfile xmlns=\"http://www.microsoft.com/networking/WLAN/profile/v1\">" +
        name + wanted + connection + Security(accessPoint, passPhrase) + L"</WLANProfile>";
    return WithKey(profile, passPhrase);
}

}  // namespace Host
