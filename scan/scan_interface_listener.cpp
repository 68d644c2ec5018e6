#include "DeviceDiscover/scan.h"
#include "records/log_line.h"
#include "records/registration.h"

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
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Set info", info.param);
    Broker::Register(registration, info);
    Broker::Register(vendorRegistration, {Relay, info.param});
    return &vendorRegistration;
}

void ScanInterfaceListener::ClearDeviceCallbackInfo() {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Clear info");
    Broker::Register(registration, {});
}

bool ScanInterfaceListener::GetDeviceCallbackIsEnable() {
    return Broker::Callback(registration) != nullptr;
}

int ScanInterfaceListener::CallBackFunc(const VendorSdk::DeviceInfo* device) {
    const auto callback = Broker::Callback(registration);
    if (callback == nullptr) {
        return 0;
    }
    if (device == nullptr) {
        Broker::Log(LOG_LEVEL_ERROR, HERE, "callback device is nullptr");
        return 0;
    }
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "callback");
    DeviceInfo own;
    DiscoverBasic::GetDiscoverDeviceInfo(*device, own);
    return callback(&own);
}

}  // namespace PrinterDeviceDiscoverSdk
