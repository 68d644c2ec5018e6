#pragma once

// What a vendor's module may export. Each entry point is looked up by its exact name, with C
// linkage and the platform's default calling convention; a module provides those it can serve and
// leaves out the others. Entry points may be called from any thread, also from several at once.
// Pointers are never null and, but for a scan's `info`, valid during the call only. Nothing may be
// thrown. A result other than success reaches the application unchanged, unless said otherwise.
//
// A module declares an entry point with VENDORSDK_EXPORT, which fixes its type and exports it, and
// then defines it as an ordinary function:
//
//     VENDORSDK_EXPORT(StopDeviceScan);
//     int StopDeviceScan() { ... }

#include <cstdint>

#include "VendorSdk/records.h"

namespace VendorSdk {

// --- Network scan -------------------------------------------------------------------------------

// Looks for printers and reports each through info->callback. Runs on a thread of its own and may
// run until StopDeviceScan. `info` lives as long as the process. May be called again while it runs,
// and the process may end while it runs: nobody waits for it. 0: success; another result is only
// logged.
using StartDeviceScanFunction = int(DeviceCallbackInfo* info);

// Ends the scan and makes a running StartDeviceScan return. Also called when none runs. 0: success;
// of several vendors only the last one's result reaches the application, each failure the log.
using StopDeviceScanFunction = int();

// Whether the printer can be reached and would accept a job. 1 (not 0): yes.
using GetDeviceConnectStateFunction = int(const DeviceInfo* device);

// The application is about to connect to the printer. 0: success.
using BeforeConnectEventNotifyFunction = int(const DeviceInfo* device);

// The application has connected to the printer. 0: success.
using ConnectSuccessNotifyEventFunction = int(const DeviceInfo* device);

// The application could not connect to the printer. 0: success.
using ConnectFailNotifyEventFunction = int(const DeviceInfo* device);

// --- Wi-Fi set-up through the printer's own access point ----------------------------------------

// Reports each Wi-Fi network in range through info->callback. Runs on a thread of its own and may
// run until StopAPWifiScan. Otherwise as StartDeviceScan.
using StartAPWifiScanFunction = int(WifiCallbackInfo* info);

// Ends that scan and makes a running StartAPWifiScan return. 0: success.
using StopAPWifiScanFunction = int();

// Hands the printer whose access point the host is joined to a network name and pass phrase.
// 0: success.
using PrinterAPNetConfigEventFunction = int(WifiConfigInfo* network);

// Whether the printer of `device` is on the local network, whatever the host is joined to. 0: yes.
using IsLocalAreaNetworkOKFunction = int(DeviceInfo* device);

// Fills every field of `device` with the record of the printer whose access point the host is
// joined to. 0: success.
using GetDeviceInfoByNetFunction = int(DeviceInfo* device);

// Whether the host is joined to the access point of one of this vendor's printers. 0: yes.
using IsConnectCurrentWifiAPFunction = int();

// --- USB ----------------------------------------------------------------------------------------

// Writes the records of the attached printers of that product and vendor id to `devices`, which has
// room for 64, and their number to `count`, which is 0 at first. Every field of a record is
// written; a number beyond 64 counts as none at all. 0: success, also without a printer.
using GetDeviceInfoByUsbFunction = int(std::uint16_t productId, std::uint16_t vendorId,
                                       DeviceInfo* devices, std::int32_t* count);

// Writes the Wi-Fi networks that the printer sees to `networks`, which has room for 128, and their
// number to `count`, which is 0 at first; a number beyond 128 counts as none at all. `option` comes
// from the application as it stands. 0: success, also without a network.
using USBWifiScanFunction = int(const DeviceInfo* device, std::int32_t option,
                                WifiConfigInfo* networks, std::int32_t* count);

// Hands a printer on USB a network name and pass phrase. 0: success; another result is logged, and
// reaches the application as -1.
using PrinterUSBNetConfigEventFunction = int(const DeviceInfo* device,
                                             const WifiConfigInfo* network);

}  // namespace VendorSdk

// The one list of entry points, a family each, in the order of the broker's slots. X is given the
// name of the broker's slot, the exported name, and what the broker logs when the export is
// missing.

#define VENDORSDK_SCAN_ENTRY_POINTS(X)                                                        \
    X(StartDeviceScan, StartDeviceScan, "startDeviceScan is nullptr, err:")                   \
    X(StopDeviceScan, StopDeviceScan, "stopDeviceScan is nullptr, err:")                      \
    X(GetDeviceConnectState, GetDeviceConnectState, "getDeviceConnectState is nullptr, err:") \
    X(BeforeConnectEventNotify, BeforeConnectEventNotify,                                     \
      "beforeConnectEventNotify is nullptr, err:")                                            \
    X(ConnectSuccessNotifyEvent, ConnectSuccessNotifyEvent,                                   \
      "connectSuccessNotifyEvent is nullptr, err:")                                           \
    X(ConnectFailNotifyEvent, ConnectFailNotifyEvent, "connectFailNotifyEvent is nullptr, err:")

#define VENDORSDK_NETCONN_ENTRY_POINTS(X)                                                  \
    X(StartAPWifiScan, StartAPWifiScan, "startApWifiScan is nullptr, err:")                \
    X(StopAPWifiScan, StopAPWifiScan, "stopApWifiScan is nullptr, err:")                   \
    X(PrinterAPNetConfigEvent, PrinterAPNetConfigEvent,                                    \
      "printerApNetConfigEvent is nullptr, err:")                                          \
    X(IsLocalAreaNetworkOK, IsLocalAreaNetworkOK, "isLocalAreaNetworkOK is nullptr, err:") \
    X(GetDeviceInfoByNet, GetDeviceInfoByNet, "getDeviceInfoByNet is nullptr, err:")       \
    X(IsConnectCurrentWifiAP, IsConnectCurrentWifiAP, "isConnectCurrentWifiAp is nullptr, err:")

#define VENDORSDK_USB_ENTRY_POINTS(X)                                                  \
    X(pGetDeviceInfoByUsb, GetDeviceInfoByUsb, "pGetDeviceInfoByUsb is nullptr, err:") \
    X(pGetUSBWifiScan, USBWifiScan, "pGetUSBWifiScan is nullptr, err:")                \
    X(pPrinterUSBNetConfigEvent, PrinterUSBNetConfigEvent,                             \
      "pPrinterUSBNetConfigEvent is nullptr, err:")

// One row of a list as a member of the broker's table entry.
#define VENDORSDK_SLOT(slot, name, message) VendorSdk::name##Function* slot = nullptr;

#if defined(_WIN32)
#define VENDORSDK_EXPORT(name) extern "C" __declspec(dllexport) VendorSdk::name##Function name
#else
#define VENDORSDK_EXPORT(name) \
    extern "C" __attribute__((visibility("default"))) VendorSdk::name##Function name
#endif
