// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <iterator>
#include <utility>

#include "DeviceDiscover/hostnet.h"
#include "broker/log/log_line.h"

namespace DeviceDiscover {

using PrinterDiscoverAPI::PrinterWifiAPI;
using PrinterWifiApiStruct::WlanInfoData;

PrinterWifiInterface& PrinterWifiInterface::GetInstance() {
    static PrinterWifiInterface instance;
    return instance;
}

PrinterWifiInterface::PrinterWifiInterface() = default;

PrinterWifiInterface::PrinterWifiInterface(const PrinterWifiInterface& other) = default;

PrinterWifiInterface& PrinterWifiInterface::operator=(const PrinterWifiInterface& other) = default;

PrinterWifiInterface::~PrinterWifiInterface() = default;

void PrinterWifiInterface::GetSsidList(std::vector<WlanInfoData>& networks) {
    PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(networks);
}

void PrinterWifiInterface::QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                                            std::wstring& interfaceName) {
    PrinterWifiAPI::GetInstance().QueryConnectedAP(ssid, hardwareAddress, interfaceName);
}

bool PrinterWifiInterface::ConnectAP(std::wstring ssid, std::wstring passPhrase) {
    return PrinterWifiAPI::GetInstance().ConnectAP(std::move(ssid), std::move(passPhrase));
}

void PrinterWifiInterface::GetSupList(std::vector<WlanInfoData>& networks) {
    Broker::Log(LOG_LEVEL_WARNING, HERE, L"start Scan");
    networks.clear();
    std::vector<WlanInfoData> inRange;
    PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(inRange);
    std::copy_if(
        inRange.begin(), inRange.end(), std::back_inserter(networks),
        [](const WlanInfoData& network) { return !network.ssid.empty() && !network.excludeFlag; });
}

}  // namespace DeviceDiscover
