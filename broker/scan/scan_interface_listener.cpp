// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/scan.h"
#include "broker/binding/relay.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

int Relay(const VendorSdk::DeviceInfo* device) {
    return ScanInterfaceListener::GetInstance().CallBackFunc(device);
}

}  // namespace

ScanInterfaceListener& ScanInterfaceListener::GetInstance() {
    static ScanInterfaceListener instance;
    return instance;
}

ScanInterfaceListener::ScanInterfaceListener() {
    ClearDeviceCallbackInfo();
}

VendorSdk::DeviceCallbackInfo* ScanInterfaceListener::SetDeviceCallbackInfo(
    const DeviceCallbackInfo& info) {
    return Broker::SetRegistration(registration, vendorRegistration, info, Relay, HERE);
}

void ScanInterfaceListener::ClearDeviceCallbackInfo() {
    Broker::ClearRegistration(registration, HERE);
}

bool ScanInterfaceListener::GetDeviceCallbackIsEnable() {
    return Broker::Callback(registration) != nullptr;
}

int ScanInterfaceListener::CallBackFunc(const VendorSdk::DeviceInfo* device) {
    return Broker::RelayReport(registration, device, DeviceInfo{},
                               DiscoverBasic::GetDiscoverDeviceInfo, HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
