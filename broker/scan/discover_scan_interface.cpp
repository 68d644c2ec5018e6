// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/scan.h"
#include "broker/records/device_lines.h"

namespace PrinterDeviceDiscoverSdk {

DiscoverScanInterface& DiscoverScanInterface::GetInstance() {
    static DiscoverScanInterface instance;
    return instance;
}

DiscoverScanInterface::DiscoverScanInterface() = default;

DiscoverScanInterface::~DiscoverScanInterface() = default;

int DiscoverScanInterface::StartDeviceScan(const DeviceCallbackInfo& info) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Start Device Scan");
    return ScanInterface::GetInstance().StartDeviceScan(info);
}

int DiscoverScanInterface::StopDeviceScan() {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Stop Device Scan");
    return ScanInterface::GetInstance().StopDeviceScan();
}

int DiscoverScanInterface::GetDeviceConnectState(const DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return ScanInterface::GetInstance().GetDeviceConnectState(device);
}

int DiscoverScanInterface::BeforeConnectEventNotify(const DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return ScanInterface::GetInstance().BeforeConnectEventNotify(device);
}

int DiscoverScanInterface::ConnectSuccessNotifyEvent(const DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return ScanInterface::GetInstance().ConnectSuccessNotifyEvent(device);
}

int DiscoverScanInterface::ConnectFailNotifyEvent(const DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return ScanInterface::GetInstance().ConnectFailNotifyEvent(device);
}

}  // namespace PrinterDeviceDiscoverSdk
