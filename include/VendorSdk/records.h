// SPDX-License-Identifier: Apache-2.0

#pragma once

// The records that the broker and a vendor's module exchange. Their layout is an ABI: field order,
// widths and sizes never change, on a 64-bit little-endian target with natural alignment. Every
// text field is NUL-terminated narrow text.

#include <cstddef>
#include <cstdint>

namespace VendorSdk {

// One printer.
struct DeviceInfo {
    std::uint16_t code1;  // between application and vendor; the broker only carries it
    std::uint16_t code2;  // between application and vendor; the broker only carries it
    char deviceSN[64];    // serial number
    // The vendor's productId. Requests for the device go to this vendor.
    char modelID[32];
    char extra1[64];  // between application and vendor; the broker only carries it
    char extra2[32];  // between application and vendor; the broker only carries it
    char extra3[32];  // between application and vendor; the broker only carries it
};
static_assert(sizeof(DeviceInfo) == 228 && alignof(DeviceInfo) == 2);
static_assert(offsetof(DeviceInfo, code1) == 0 && offsetof(DeviceInfo, code2) == 2);
static_assert(offsetof(DeviceInfo, deviceSN) == 4 && offsetof(DeviceInfo, modelID) == 68);
static_assert(offsetof(DeviceInfo, extra1) == 100 && offsetof(DeviceInfo, extra2) == 164);
static_assert(offsetof(DeviceInfo, extra3) == 196);

// One Wi-Fi network.
struct WifiConfigInfo {
    float rssi;      // received signal strength, as the vendor measures it
    char ssid[128];  // network name
    char pwd[32];    // pass phrase
};
static_assert(sizeof(WifiConfigInfo) == 164 && alignof(WifiConfigInfo) == 4);
static_assert(offsetof(WifiConfigInfo, rssi) == 0 && offsetof(WifiConfigInfo, ssid) == 4);
static_assert(offsetof(WifiConfigInfo, pwd) == 132);

// Where a scan reports printers. `callback` may be called from any thread, from several at once,
// and stays callable until the process ends: after the stop it drops the record and returns 0. The
// record must stay valid until `callback` returns. A null record is dropped and logged. The result
// of `callback` is the application's; application and vendor agree on its meaning. `param` may
// change when the application starts another scan: read it once, at the start.
struct DeviceCallbackInfo {
    int (*callback)(const DeviceInfo* device);
    std::int32_t param;  // the application's own value
};
static_assert(sizeof(DeviceCallbackInfo) == 16 && alignof(DeviceCallbackInfo) == 8);
static_assert(offsetof(DeviceCallbackInfo, callback) == 0);
static_assert(offsetof(DeviceCallbackInfo, param) == 8);

// Where a Wi-Fi scan reports networks. The rules of DeviceCallbackInfo apply.
struct WifiCallbackInfo {
    int (*callback)(const WifiConfigInfo* network);
    std::int32_t param;  // the application's own value
};
static_assert(sizeof(WifiCallbackInfo) == 16 && alignof(WifiCallbackInfo) == 8);
static_assert(offsetof(WifiCallbackInfo, callback) == 0);
static_assert(offsetof(WifiCallbackInfo, param) == 8);

}  // namespace VendorSdk
