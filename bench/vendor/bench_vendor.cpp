// A vendor with the entry points that are measured, each doing as little as can be. BENCH_CONNECTED
// is what it says when asked whether the host is joined to its access point; 0 is yes.

#include <cstring>

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

const VendorSdk::DeviceInfo device{631, 1, "VNB3K12345", "bench", "Example LaserPrinter 4000",
                                   "",  ""};
const VendorSdk::WifiConfigInfo network{-61.5F, "Example Office 5 GHz", ""};

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

int GetDeviceInfoByUsb(std::uint16_t, std::uint16_t, VendorSdk::DeviceInfo* devices,
                       std::int32_t* count) {
    for (*count = 0; *count < 64; ++*count) {
        std::memcpy(&devices[*count], &device, sizeof device);
    }
    return 0;
}

int USBWifiScan(const VendorSdk::DeviceInfo*, std::int32_t, VendorSdk::WifiConfigInfo* networks,
                std::int32_t* count) {
    for (*count = 0; *count < 128; ++*count) {
        std::memcpy(&networks[*count], &network, sizeof network);
    }
    return 0;
}

int PrinterUSBNetConfigEvent(const VendorSdk::DeviceInfo*, const VendorSdk::WifiConfigInfo*) {
    return 0;
}
