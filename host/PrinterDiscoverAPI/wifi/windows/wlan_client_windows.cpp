// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_client_windows.h"

#include <algorithm>

#include "host/PrinterDiscoverAPI/wifi/network_name.h"

namespace Host {

namespace {

// The client version for Windows Vista and later.
constexpr DWORD kVersion = 2;

}  // namespace

WlanClient::WlanClient() : library(TheWlanLibrary()) {
    DWORD version = 0;
    RequireWlan("WlanOpenHandle", library.openHandle(kVersion, nullptr, &version, &handle));
}

WlanClient::~WlanClient() {
    library.closeHandle(handle, nullptr);
}

std::vector<WLAN_INTERFACE_INFO> WlanClient::Adapters() const {
    WLAN_INTERFACE_INFO_LIST* list = nullptr;
    RequireWlan("WlanEnumInterfaces", library.enumInterfaces(handle, nullptr, &list));
    const WlanMemory<WLAN_INTERFACE_INFO_LIST> owner(list);
    return {list->InterfaceInfo, list->InterfaceInfo + list->dwNumberOfItems};
}

WlanMemory<void> WlanClient::QueryBytes(const GUID& adapter, WLAN_INTF_OPCODE what,
                                        DWORD& size) const {
    void* data = nullptr;
    const DWORD error =
        library.queryInterface(handle, &adapter, what, nullptr, &size, &data, nullptr);
    switch (error) {
        case ERROR_INVALID_STATE:
        case ERROR_NOT_FOUND:
        case ERROR_NOT_SUPPORTED:
            return nullptr;
        default:
            RequireWlan("WlanQueryInterface", error);
            return WlanMemory<void>(data);
    }
}

std::string NameOf(const DOT11_SSID& ssid) {
    const std::size_t size = std::min<std::size_t>(ssid.uSSIDLength, kLongestNetworkName);
    return std::string(BroadcastName({reinterpret_cast<const char*>(ssid.ucSSID), size}));
}

DOT11_SSID SsidOf(const std::string& name) {
    DOT11_SSID ssid{};
    const std::size_t size = std::min(name.size(), kLongestNetworkName);
    ssid.uSSIDLength = static_cast<ULONG>(size);
    std::memcpy(ssid.ucSSID, name.data(), size);
    return ssid;
}

}  // namespace Host
