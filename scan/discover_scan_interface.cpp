#include "DeviceDiscover/scan.h"
#include "records/field_text.h"
#include "records/log_line.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

void LogDevice(const DeviceInfo& device, const Broker::Location& where) {
    Broker::Log(LOG_LEVEL_DEBUG, where, "deviceSN", Broker::FieldText(device, device.deviceSN));
    Broker::Log(LOG_LEVEL_DEBUG, where, "modelID", Broker::FieldText(device, device.modelID));
}

}  // namespace

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
    LogDevice(device, HERE);
    return ScanInterface::GetInstance().GetDeviceConnectState(device);
}

int DiscoverScanInterface::BeforeConnectEventNotify(const DeviceInfo& device) {
    LogDevice(device, HERE);
    return ScanInterface::GetInstance().BeforeConnectEventNotify(device);
}

int DiscoverScanInterface::ConnectSuccessNotifyEvent(const DeviceInfo& device) {
    LogDevice(device, HERE);
    return ScanInterface::GetInstance().ConnectSuccessNotifyEvent(device);
}

int DiscoverScanInterface::ConnectFailNotifyEvent(const DeviceInfo& device) {
    LogDevice(device, HERE);
    return ScanInterface::GetInstance().ConnectFailNotifyEvent(device);
}

}  // namespace PrinterDeviceDiscoverSdk
