// SPDX-License-Identifier: Apache-2.0

// One scripted module. The build says of each entry point whether this module has it:
// SCRIPTED_<name> is VENDORSDK_EXPORT or SCRIPTED_WITHOUT.

#include "vendor.h"

#define SCRIPTED_WITHOUT(name) [[maybe_unused]] static VendorSdk::name##Function name

namespace ScriptedVendor {

const char* const kModuleName = SCRIPTED_MODULE_NAME;

namespace {

template <class Record>
int Answer(const char* entryPoint, const Record* record) {
    const Presence vendor;
    return vendor ? vendor->Answer(entryPoint, record, sizeof *record) : 0;
}

// Answers the stop first; the scans of its kind run until then.
int Stop(const char* entryPoint, void (Vendor::*stop)()) {
    const Presence vendor;
    if (!vendor) {
        return 0;
    }
    const int result = vendor->Answer(entryPoint, nullptr, 0);
    ((*vendor).*stop)();
    return result;
}

}  // namespace

}  // namespace ScriptedVendor

VENDORSDK_EXPORT(ScriptedVendorControl);
const ScriptedVendor::Control* ScriptedVendorControl() {
    return &ScriptedVendor::ControlFunctions();
}

SCRIPTED_StartDeviceScan(StartDeviceScan);
int StartDeviceScan(VendorSdk::DeviceCallbackInfo* info) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->Scan(info) : 0;
}

SCRIPTED_StopDeviceScan(StopDeviceScan);
int StopDeviceScan() {
    return ScriptedVendor::Stop("StopDeviceScan", &ScriptedVendor::Vendor::StopScans);
}

SCRIPTED_GetDeviceConnectState(GetDeviceConnectState);
int GetDeviceConnectState(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("GetDeviceConnectState", device);
}

SCRIPTED_BeforeConnectEventNotify(BeforeConnectEventNotify);
int BeforeConnectEventNotify(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("BeforeConnectEventNotify", device);
}

SCRIPTED_ConnectSuccessNotifyEvent(ConnectSuccessNotifyEvent);
int ConnectSuccessNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("ConnectSuccessNotifyEvent", device);
}

SCRIPTED_ConnectFailNotifyEvent(ConnectFailNotifyEvent);
int ConnectFailNotifyEvent(const VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("ConnectFailNotifyEvent", device);
}

SCRIPTED_StartAPWifiScan(StartAPWifiScan);
int StartAPWifiScan(VendorSdk::WifiCallbackInfo* info) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->Scan(info) : 0;
}

SCRIPTED_StopAPWifiScan(StopAPWifiScan);
int StopAPWifiScan() {
    return ScriptedVendor::Stop("StopAPWifiScan", &ScriptedVendor::Vendor::StopWifiScans);
}

SCRIPTED_PrinterAPNetConfigEvent(PrinterAPNetConfigEvent);
int PrinterAPNetConfigEvent(VendorSdk::WifiConfigInfo* network) {
    return ScriptedVendor::Answer("PrinterAPNetConfigEvent", network);
}

SCRIPTED_IsLocalAreaNetworkOK(IsLocalAreaNetworkOK);
int IsLocalAreaNetworkOK(VendorSdk::DeviceInfo* device) {
    return ScriptedVendor::Answer("IsLocalAreaNetworkOK", device);
}

SCRIPTED_GetDeviceInfoByNet(GetDeviceInfoByNet);
int GetDeviceInfoByNet(VendorSdk::DeviceInfo* device) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->FillDevice(device) : 0;
}

SCRIPTED_IsConnectCurrentWifiAP(IsConnectCurrentWifiAP);
int IsConnectCurrentWifiAP() {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->Answer("IsConnectCurrentWifiAP", nullptr, 0) : 0;
}

SCRIPTED_GetDeviceInfoByUsb(GetDeviceInfoByUsb);
int GetDeviceInfoByUsb(std::uint16_t productId, std::uint16_t vendorId,
                       VendorSdk::DeviceInfo* devices, std::int32_t* count) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->ListDevices({productId, vendorId, *count}, devices, count) : 0;
}

SCRIPTED_USBWifiScan(USBWifiScan);
int USBWifiScan(const VendorSdk::DeviceInfo* device, std::int32_t option,
                VendorSdk::WifiConfigInfo* networks, std::int32_t* count) {
    const ScriptedVendor::Presence vendor;
    return vendor ? vendor->ListNetworks({*device, option, *count}, device, networks, count) : 0;
}

SCRIPTED_PrinterUSBNetConfigEvent(PrinterUSBNetConfigEvent);
int PrinterUSBNetConfigEvent(const VendorSdk::DeviceInfo* device,
                             const VendorSdk::WifiConfigInfo* network) {
    const ScriptedVendor::Presence vendor;
    ScriptedVendor::UsbNetConfig setting{*device, *network};
    const int result = vendor ? vendor->Answer("PrinterUSBNetConfigEvent", device, network,
                                               &setting, sizeof setting)
                              : 0;
    // A forgetful module must not keep the arguments here either.
    volatile char* const passPhrase = setting.network.pwd;
    for (std::size_t at = 0; at < sizeof setting.network.pwd; ++at) {
        passPhrase[at] = 0;
    }
    return result;
}
