// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/netconn.h"
#include "broker/binding/relay.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

int Relay(const VendorSdk::WifiConfigInfo* network) {
    return NetConnInterfaceListener::GetInstance().CallBackFunc(network);
}

}  // namespace

NetConnInterfaceListener& NetConnInterfaceListener::GetInstance() {
    static NetConnInterfaceListener instance;
    return instance;
}

NetConnInterfaceListener::NetConnInterfaceListener() {
    ClearDeviceCallbackInfo();
}

VendorSdk::WifiCallbackInfo* NetConnInterfaceListener::SetDeviceCallbackInfo(
    const WifiCallbackInfo& info) {
    return Broker::SetRegistration(registration, vendorRegistration, info, Relay, HERE);
}

void NetConnInterfaceListener::ClearDeviceCallbackInfo() {
    Broker::ClearRegistration(registration, HERE);
}

bool NetConnInterfaceListener::GetDeviceCallbackIsEnable() {
    return Broker::Callback(registration) != nullptr;
}

int NetConnInterfaceListener::CallBackFunc(const VendorSdk::WifiConfigInfo* network) {
    return Broker::RelayReport(registration, network, WifiConfigInfo{0.1F, {}, {}},
                               DiscoverBasic::GetDiscoverWifoConfigInfo, HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
