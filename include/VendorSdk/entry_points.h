// SPDX-License-Identifier: Apache-2.0

#pragma once

// The entry points that a vendor's module may export. The broker looks up each by its exact name,
// with C linkage and the platform's default calling convention. A module exports the entry points
// that it can serve and leaves out the others. Entry points may be called from any thread, from
// several at once, and must not throw. Pointer arguments are never null and, except a scan's
// `info`, are valid only during the call. A result other than success is returned to the
// application unchanged, unless stated otherwise.
//
// A module declares an entry point with VENDORSDK_EXPORT, which exports it with its type, and then
// defines it as an ordinary function:
//
//     VENDORSDK_EXPORT(StopDeviceScan);
//     int StopDeviceScan() { ... }

#include <cstdint>

#include "VendorSdk/records.h"

namespace VendorSdk {

// --- Network scan -------------------------------------------------------------------------------

// Looks for printers and reports each through info->callback. Runs on its own thread and may run
// until StopDeviceScan. `info` stays valid until the process ends. May be called again while it
// runs. The process may end while it runs; the broker does not wait. 0: success; any other result
// is only logged.
using StartDeviceScanFunction = int(DeviceCallbackInfo* info);

// Ends the scan and makes a running StartDeviceScan return. Also called when no scan runs. 0:
// success. Each failure is logged; the application gets only the last vendor's result.
using StopDeviceScanFunction = int();

// Tells whether the printer can be reached and would accept a job. 1 (not 0): yes.
using GetDeviceConnectStateFunction = int(const DeviceInfo* device);

// The application is about to connect to the printer. 0: success.
using BeforeConnectEventNotifyFunction = int(const DeviceInfo* device);

// The application has connected to the printer. 0: success.
using ConnectSuccessNotifyEventFunction = int(const DeviceInfo* device);

// The application could not connect to the printer. 0: success.
using ConnectFailNotifyEventFunction = int(const DeviceInfo* device);

// --- Wi-Fi set-up through the printer's own access point ----------------------------------------

// Reports each Wi-Fi network in range through info->callback. Runs on its own thread and may run
// until StopAPWifiScan. The other rules of StartDeviceScan apply.
using StartAPWifiScanFunction = int(WifiCallbackInfo* info);

// Ends the Wi-Fi scan and makes a running StartAPWifiScan return. 0: success.
using StopAPWifiScanFunction = int();

// Sends a network's name and pass phrase to the printer whose access point the host is joined to.
// 0: success.
using PrinterAPNetConfigEventFunction = int(WifiConfigInfo* network);

// Tells whether the printer `device` is on the local network, whichever network the host is joined
// to. 0: yes.
using IsLocalAreaNetworkOKFunction = int(DeviceInfo* device);

// Fills every field of `device` for the printer whose access point the host is joined to. 0:
// success.
using GetDeviceInfoByNetFunction = int(DeviceInfo* device);

// Tells whether the host is joined to the access point of one of this vendor's printers. 0: yes.
using IsConnectCurrentWifiAPFunction = int();

// --- USB ----------------------------------------------------------------------------------------

// The most records that one call returns.
inline constexpr std::int32_t kMaxDevices = 64;
inline constexpr std::int32_t kMaxNetworks = 128;

// Writes the records of the attached printers with this product and vendor id to `devices`, which
// has room for kMaxDevices, and their number to `count`, which is 0 on entry. Must write every
// field of a record. A count above kMaxDevices is treated as 0. 0: success, also without a printer.
using GetDeviceInfoByUsbFunction = int(std::uint16_t productId, std::uint16_t vendorId,
                                       DeviceInfo* devices, std::int32_t* count);

// Writes the Wi-Fi networks that the printer sees to `networks`, which has room for
// kMaxNetworks, and their number to `count`, which is 0 on entry. A count above kMaxNetworks is
// treated as 0. `option` is the application's value, unchanged. 0: success, also without a network.
using USBWifiScanFunction = int(const DeviceInfo* device, std::int32_t option,
                                WifiConfigInfo* networks, std::int32_t* count);

// Sends a network's name and pass phrase to a printer on USB. 0: success; any other result is
// logged, and the application gets -1.
using PrinterUSBNetConfigEventFunction = int(const DeviceInfo* device,
                                             const WifiConfigInfo* network);

}  // namespace VendorSdk

// The names of each family's entry points: X is called with one name at a time.

#define VENDORSDK_SCAN_ENTRY_POINTS(X) \
    X(StartDeviceScan)                 \
    X(StopDeviceScan)                  \
    X(GetDeviceConnectState)           \
    X(BeforeConnectEventNotify)        \
    X(ConnectSuccessNotifyEvent)       \
    X(ConnectFailNotifyEvent)

#define VENDORSDK_NETCONN_ENTRY_POINTS(X) \
    X(StartAPWifiScan)                    \
    X(StopAPWifiScan)                     \
    X(PrinterAPNetConfigEvent)            \
    X(IsLocalAreaNetworkOK)               \
    X(GetDeviceInfoByNet)                 \
    X(IsConnectCurrentWifiAP)

#define VENDORSDK_USB_ENTRY_POINTS(X) \
    X(GetDeviceInfoByUsb)             \
    X(USBWifiScan)                    \
    X(PrinterUSBNetConfigEvent)

#if defined(_WIN32)
#define VENDORSDK_EXPORT(name) extern "C" __declspec(dllexport) VendorSdk::name##Function name
#else
#define VENDORSDK_EXPORT(name) \
    extern "C" __attribute__((visibility("default"))) VendorSdk::name##Function name
#endif
