// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterAdapter/port_kind.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/text/ascii_case.h"
#include "platform/PrinterAdapter/PrinterListProvider.h"

namespace PrinterAdapter {

namespace {

constexpr std::array<std::string_view, 2> kUsbSchemes{"usb", "ippusb"};
constexpr std::array<std::string_view, 9> kNetworkSchemes{"dnssd", "http", "https", "ipp",   "ipps",
                                                          "lpd",   "mdns", "smb",   "socket"};

constexpr std::array<std::wstring_view, 2> kUsbPorts{L"USB", L"DOT4"};
constexpr std::array<std::wstring_view, 6> kNetworkPorts{L"IP_",     L"WSD",    L"\\\\",
                                                         L"HTTP://", L"HTTPS:", L"IPP"};
constexpr std::array<std::wstring_view, 4> kNetworkWords{L"TCP/IP", L"WSD", L"IPP", L"INTERNET"};

template <class List>
bool StartsWithOneOf(const std::wstring& text, const List& list) {
    return std::any_of(list.begin(), list.end(),
                       [&text](std::wstring_view start) { return text.starts_with(start); });
}

template <class List>
bool HasOneOf(const std::wstring& text, const List& list) {
    return std::any_of(list.begin(), list.end(), [&text](std::wstring_view word) {
        return text.find(word) != std::wstring::npos;
    });
}

template <class List>
bool IsOneOf(std::string_view text, const List& list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

std::int32_t ConnectTypeOfScheme(std::string_view scheme) {
    if (IsOneOf(scheme, kUsbSchemes)) {
        return PrinterSdk::kConnectTypeUsb;
    }
    return IsOneOf(scheme, kNetworkSchemes) ? PrinterSdk::kConnectTypeWlan : kConnectTypeOther;
}

std::int32_t ConnectTypeOfPort(std::wstring_view name, std::wstring_view description) {
    const std::wstring port = Base::UpperCase(name);
    if (StartsWithOneOf(port, kUsbPorts)) {
        return PrinterSdk::kConnectTypeUsb;
    }
    const bool isNetwork = StartsWithOneOf(port, kNetworkPorts) ||
                           HasOneOf(Base::UpperCase(description), kNetworkWords);
    return isNetwork ? PrinterSdk::kConnectTypeWlan : kConnectTypeOther;
}

}  // namespace PrinterAdapter
