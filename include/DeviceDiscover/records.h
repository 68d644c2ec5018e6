// SPDX-License-Identifier: Apache-2.0

#pragma once

// The records that the application exchanges with the library, and their conversion to and from the
// vendors' records, which have the same layout. The layout is an ABI: field order, widths and sizes
// never change, on a 64-bit little-endian target with natural alignment. Records are copied in each
// direction; the library keeps no pointer to a caller's record after the call.

#include <cstddef>
#include <cstdint>

#include "DeviceDiscover/export.h"
#include "VendorSdk/records.h"

namespace PrinterDeviceDiscoverSdk {

// One printer. Text fields are NUL-terminated narrow text.
struct DeviceInfo {
    std::uint16_t code1;  // between application and vendor; the library only carries it
    std::uint16_t code2;  // between application and vendor; the library only carries it
    char deviceSN[64];    // serial number
    char modelID[32];     // chooses the vendor: byte for byte that vendor's productId
    char extra1[64];      // between application and vendor; the library only carries it
    char extra2[32];      // between application and vendor; the library only carries it
    char extra3[32];      // between application and vendor; the library only carries it
};
static_assert(sizeof(DeviceInfo) == 228 && alignof(DeviceInfo) == 2);
static_assert(offsetof(DeviceInfo, code1) == 0 && offsetof(DeviceInfo, code2) == 2);
static_assert(offsetof(DeviceInfo, deviceSN) == 4 && offsetof(DeviceInfo, modelID) == 68);
static_assert(offsetof(DeviceInfo, extra1) == 100 && offsetof(DeviceInfo, extra2) == 164);
static_assert(offsetof(DeviceInfo, extra3) == 196);

// One Wi-Fi network. Text fields are NUL-terminated narrow text.
struct WifiConfigInfo {
    float rssi;      // received signal strength, as the vendor measures it
    char ssid[128];  // network name
    char pwd[32];    // pass phrase
};
static_assert(sizeof(WifiConfigInfo) == 164 && alignof(WifiConfigInfo) == 4);
static_assert(offsetof(WifiConfigInfo, rssi) == 0 && offsetof(WifiConfigInfo, ssid) == 4);
static_assert(offsetof(WifiConfigInfo, pwd) == 132);

// The application's registration for printers. The library copies it. `callback` is called once for
// each report, on the vendors' threads, possibly on several at once. Its record lives only during
// the call; its result goes back to the vendor unchanged. The same printer may be reported more
// than once. The callback must not throw: the exception would pass through vendor code. A null
// `callback` means that there is no listener.
struct DeviceCallbackInfo {
    int (*callback)(const DeviceInfo* device);
    std::int32_t param;  // passed to the vendors with their registration; the library only logs it
};
static_assert(sizeof(DeviceCallbackInfo) == 16 && alignof(DeviceCallbackInfo) == 8);
static_assert(offsetof(DeviceCallbackInfo, callback) == 0);
static_assert(offsetof(DeviceCallbackInfo, param) == 8);

// The application's registration for Wi-Fi networks. The rules of DeviceCallbackInfo apply.
struct WifiCallbackInfo {
    int (*callback)(const WifiConfigInfo* network);
    std::int32_t param;  // passed to the vendor with its registration; the library only logs it
};
static_assert(sizeof(WifiCallbackInfo) == 16 && alignof(WifiCallbackInfo) == 8);
static_assert(offsetof(WifiCallbackInfo, callback) == 0);
static_assert(offsetof(WifiCallbackInfo, param) == 8);

// Converts between the application's and the vendors' records. Safe from any thread. Returns no
// result.
class DEVICEDISCOVER_API DiscoverBasic {
public:
    // Copies a device record field by field. Text fields are copied at their full width, including
    // the bytes after the terminator. A field without a terminator stays without one.
    static void GetDiscoverDeviceInfo(const VendorSdk::DeviceInfo& from, DeviceInfo& to);
    static void GetVendorSdkDeviceInfo(const DeviceInfo& from, VendorSdk::DeviceInfo& to);

    // Copies a Wi-Fi record field by field, `rssi` bit by bit. The copy's text fields are always
    // terminated: text that fills its field loses its last character. The conversion to the
    // application's record writes three log lines; the other one writes none.
    static void GetDiscoverWifoConfigInfo(const VendorSdk::WifiConfigInfo& from,
                                          WifiConfigInfo& to);
    static void GetVendorSdkWifoConfigInfo(const WifiConfigInfo& from,
                                           VendorSdk::WifiConfigInfo& to);

    DiscoverBasic(const DiscoverBasic&) = delete;
    DiscoverBasic& operator=(const DiscoverBasic&) = delete;

private:
    DiscoverBasic() = delete;
};

}  // namespace PrinterDeviceDiscoverSdk
