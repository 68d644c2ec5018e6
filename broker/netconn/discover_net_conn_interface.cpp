// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/netconn.h"
#include "broker/records/device_lines.h"

namespace PrinterDeviceDiscoverSdk {

DiscoverNetConnInterface& DiscoverNetConnInterface::GetInstance() {
    static DiscoverNetConnInterface instance;
    return instance;
}

DiscoverNetConnInterface::DiscoverNetConnInterface() = default;

DiscoverNetConnInterface::~DiscoverNetConnInterface() = default;

int DiscoverNetConnInterface::StartAPWifiScan(const WifiCallbackInfo& info) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "StartAPWifiScan");
    return NetConnInterface::GetInstance().StartAPWifiScan(info);
}

int DiscoverNetConnInterface::StopAPWifiScan() {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "StopAPWifiScan");
    return NetConnInterface::GetInstance().StopAPWifiScan();
}

int DiscoverNetConnInterface::PrinterAPNetConfigEvent(const WifiConfigInfo& network) {
    Broker::LogSecret(LOG_LEVEL_DEBUG, HERE, "pwd", Broker::FieldText(network, network.pwd));
    Broker::LogSecret(LOG_LEVEL_DEBUG, HERE, "ssid", Broker::FieldText(network, network.ssid));
    return NetConnInterface::GetInstance().PrinterAPNetConfigEvent(network);
}

int DiscoverNetConnInterface::GetDeviceInfoByNet(DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return NetConnInterface::GetInstance().GetDeviceInfoByNet(device);
}

int DiscoverNetConnInterface::IsLocalAreaNetworkOK(const DeviceInfo& device) {
    Broker::LogDevice(device, HERE);
    return NetConnInterface::GetInstance().IsLocalAreaNetworkOK(device);
}

}  // namespace PrinterDeviceDiscoverSdk
