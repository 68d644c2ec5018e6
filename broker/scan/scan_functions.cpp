// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/scan.h"

namespace PrinterDeviceDiscoverSdk {

int StartDeviceScan(const DeviceCallbackInfo* info) {
    return ScanInterface::GetInstance().StartDeviceScan(*info);
}

int StopDeviceScan() {
    return ScanInterface::GetInstance().StopDeviceScan();
}

int GetDeviceConnectState(const DeviceInfo* device) {
    return ScanInterface::GetInstance().GetDeviceConnectState(*device);
}

int BeforeConnectEventNotify(const DeviceInfo* device) {
    return ScanInterface::GetInstance().BeforeConnectEventNotify(*device);
}

int ConnectSuccessNotifyEvent(const DeviceInfo* device) {
    return ScanInterface::GetInstance().ConnectSuccessNotifyEvent(*device);
}

int ConnectFailNotifyEvent(const DeviceInfo* device) {
    return ScanInterface::GetInstance().ConnectFailNotifyEvent(*device);
}

}  // namespace PrinterDeviceDiscoverSdk
