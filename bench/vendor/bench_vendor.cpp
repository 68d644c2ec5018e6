// SPDX-License-Identifier: Apache-2.0

// A vendor with the entry points that are measured, each doing as little as can be. BENCH_CONNECTED
// is what it says when asked whether the host is joined to its access point; 0 is yes.

#include <algorithm>
#include <array>

#include "VendorSdk/entry_points.h"

VENDORSDK_EXPORT(StartDeviceScan);
VENDORSDK_EXPORT(StopDeviceScan);
VENDORSDK_EXPORT(GetDeviceConnectState);
VENDORSDK_EXPORT(BeforeConnectEventNotify);
VENDORSDK_EXPORT(ConnectSuccessNotifyEvent);
VENDORSDK_EXPORT(ConnectFailNotifyEvent);
VENDORSDK_EXPORT(StartAPWifiScan);
VENDORSDK_EXPORT(StopAPWifiScan);
VENDORSDK_EXPORT(PrinterAPNetConfigEvent);
VENDORSDK_EXPORT(IsLocalAreaNetworkOK);
VENDORSDK_EXPORT(GetDeviceInfoByNet);
VENDORSDK_EXPORT(IsConnectCurrentWifiAP);
VENDORSDK_EXPORT(GetDeviceInfoByUsb);
VENDORSDK_EXPORT(USBWifiScan);
VENDORSDK_EXPORT(PrinterUSBNetConfigEvent);

namespace {

// As many as there is room for.
const std::array<VendorSdk::DeviceInfo, VendorSdk::kMaxDevices> devices = [] {
    std::array<VendorSdk::DeviceInfo, VendorSdk::kMaxDevices> list{};
    list.fill({1, 2, "VNB3K12345", "bench", "Example LaserPrinter 4000 series", "", ""});
    return list;
}();
const std::array<VendorSdk::WifiConfigInfo, VendorSdk::kMaxNetworks> networks = [] {
    std::array<VendorSdk::WifiConfigInfo, VendorSdk::kMaxNetworks> list{};
    list.fill({-61.5F, "Example Office 5 GHz", ""});
    return list;
}();

template <class List, class Record>
int Write(const List& list, Record* room, std::int32_t* count) {
    std::copy(list.begin(), list.end(), room);
    *count = static_cast<std::int32_t>(list.size());
    return 0;
}

}  // namespace

int StartDeviceScan(VendorSdk::DeviceCallbackInfo*) {
    return 0;
}

int StopDeviceScan() {
    return 0;
}

int GetDeviceConnectState(const VendorSdk::DeviceInfo*) {
    return 1;
}

int BeforeConnectEventNotify(const VendorSdk::DeviceInfo*) {
    return 0;
}

int ConnectSuccessNotifyEvent(const VendorSdk::DeviceInfo*) {
    return 0;
}

int ConnectFailNotifyEvent(const VendorSdk::DeviceInfo*) {
    return 0;
}

int StartAPWifiScan(VendorSdk::WifiCallbackInfo*) {
    return 0;
}

int StopAPWifiScan() {
    return 0;
}

int PrinterAPNetConfigEvent(VendorSdk::WifiConfigInfo*) {
    return 0;
}

int IsLocalAreaNetworkOK(VendorSdk::DeviceInfo*) {
    return 0;
}

int GetDeviceInfoByNet(VendorSdk::DeviceInfo* device) {
    *device = {};
    return 0;
}

int IsConnectCurrentWifiAP() {
    return BENCH_CONNECTED;
}

int GetDeviceInfoByUsb(std::uint16_t, std::uint16_t, VendorSdk::DeviceInfo* room,
                       std::int32_t* count) {
    return Write(devices, room, count);
}

int USBWifiScan(const VendorSdk::DeviceInfo*, std::int32_t, VendorSdk::WifiConfigInfo* room,
                std::int32_t* count) {
    return Write(networks, room, count);
}

int PrinterUSBNetConfigEvent(const VendorSdk::DeviceInfo*, const VendorSdk::WifiConfigInfo*) {
    return 0;
}
