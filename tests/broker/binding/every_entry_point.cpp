// SPDX-License-Identifier: Apache-2.0

// A module with every entry point of every family, to be looked up.

#include "VendorSdk/entry_points.h"

using namespace VendorSdk;

VENDORSDK_EXPORT(StartDeviceScan);
int StartDeviceScan(DeviceCallbackInfo*) {
    return 1;
}
VENDORSDK_EXPORT(StopDeviceScan);
int StopDeviceScan() {
    return 2;
}
VENDORSDK_EXPORT(GetDeviceConnectState);
int GetDeviceConnectState(const DeviceInfo*) {
    return 3;
}
VENDORSDK_EXPORT(BeforeConnectEventNotify);
int BeforeConnectEventNotify(const DeviceInfo*) {
    return 4;
}
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
int ConnectSuccessNotifyEvent(const DeviceInfo*) {
    return 5;
}
VENDORSDK_EXPORT(ConnectFailNotifyEvent);
int ConnectFailNotifyEvent(const DeviceInfo*) {
    return 6;
}
VENDORSDK_EXPORT(StartAPWifiScan);
int StartAPWifiScan(WifiCallbackInfo*) {
    return 7;
}
VENDORSDK_EXPORT(StopAPWifiScan);
int StopAPWifiScan() {
    return 8;
}
VENDORSDK_EXPORT(PrinterAPNetConfigEvent);
int PrinterAPNetConfigEvent(WifiConfigInfo*) {
    return 9;
}
VENDORSDK_EXPORT(IsLocalAreaNetworkOK);
int IsLocalAreaNetworkOK(DeviceInfo*) {
    return 10;
}
VENDORSDK_EXPORT(GetDeviceInfoByNet);
int GetDeviceInfoByNet(DeviceInfo*) {
    return 11;
}
VENDORSDK_EXPORT(IsConnectCurrentWifiAP);
int IsConnectCurrentWifiAP() {
    return 12;
}
VENDORSDK_EXPORT(GetDeviceInfoByUsb);
int GetDeviceInfoByUsb(std::uint16_t, std::uint16_t, DeviceInfo*, std::int32_t*) {
    return 13;
}
VENDORSDK_EXPORT(USBWifiScan);
int USBWifiScan(const DeviceInfo*, std::int32_t, WifiConfigInfo*, std::int32_t*) {
    return 14;
}
VENDORSDK_EXPORT(PrinterUSBNetConfigEvent);
int PrinterUSBNetConfigEvent(const DeviceInfo*, const WifiConfigInfo*) {
    return 15;
}
