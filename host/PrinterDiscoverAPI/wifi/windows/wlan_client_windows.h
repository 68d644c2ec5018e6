// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_library_windows.h"

namespace Host {

struct FreeWlanMemory {
    void operator()(void* memory) const { TheWlanLibrary().freeMemory(memory); }
};
template <class T>
using WlanMemory = std::unique_ptr<T, FreeWlanMemory>;

// The system's Wi-Fi service, through a separate handle; for one thread. Operations throw
// WifiProblem.
class WlanClient {
public:
    using Clock = std::chrono::steady_clock;

    WlanClient();
    ~WlanClient();
    WlanClient(const WlanClient&) = delete;
    WlanClient& operator=(const WlanClient&) = delete;

    HANDLE Handle() const { return handle; }

    std::vector<WLAN_INTERFACE_INFO> Adapters() const;

    // Queries a property of an adapter; nothing when the adapter does not have it now.
    template <class T>
    std::optional<T> Query(const GUID& adapter, WLAN_INTF_OPCODE what) const {
        DWORD size = 0;
        const WlanMemory<void> data = QueryBytes(adapter, what, size);
        if (!data || size < sizeof(T)) {
            return std::nullopt;
        }
        T value;
        std::memcpy(&value, data.get(), sizeof value);
        return value;
    }

private:
    WlanMemory<void> QueryBytes(const GUID& adapter, WLAN_INTF_OPCODE what, DWORD& size) const;

    const WlanLibrary& library;
    HANDLE handle = nullptr;
};

// Convert a network's name from and to the service's form.
std::string NameOf(const DOT11_SSID& ssid);
DOT11_SSID SsidOf(const std::string& name);

}  // namespace Host
