// SPDX-License-Identifier: Apache-2.0

// A part of an application that is loaded at run time, and brings the broker with it: who unloads
// it unloads the broker.

#include "DeviceDiscover/DeviceDiscover.h"

using namespace PrinterDeviceDiscoverSdk;

extern "C" {
PLATFORM_EXPORT int BindVendors();
PLATFORM_EXPORT int StartPrinters(int (*callback)(const DeviceInfo*));
PLATFORM_EXPORT int StartNetworks(int (*callback)(const WifiConfigInfo*));
PLATFORM_EXPORT int StartMonitor(int (*callback)(const DeviceInfo*));

int BindVendors() {
    return DiscoverScanInterface::GetInstance().StopDeviceScan();
}
int StartPrinters(int (*callback)(const DeviceInfo*)) {
    return DiscoverScanInterface::GetInstance().StartDeviceScan({callback, 1});
}
int StartNetworks(int (*callback)(const WifiConfigInfo*)) {
    return DiscoverNetConnInterface::GetInstance().StartAPWifiScan({callback, 1});
}
int StartMonitor(int (*callback)(const DeviceInfo*)) {
    return DiscoverUsbInterface::GetInstance().StartDeviceMonitor({callback, 1});
}
}
