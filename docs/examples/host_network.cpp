// SPDX-License-Identifier: Apache-2.0

// This computer's own side of the network: its Wi-Fi, and whether an address answers.
//
//     host_network [ADDRESS]

#include <DeviceDiscover/DeviceDiscover.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/PrinterUtil/PrinterUtil.h"

int main(int argc, char** argv) {
    auto& wifi = DeviceDiscover::PrinterWifiInterface::GetInstance();
    std::wstring name;
    std::wstring hardwareAddress;
    std::wstring interfaceName;
    wifi.QueryConnectedAP(name, hardwareAddress, interfaceName);
    std::printf("joined to: %s\n",
                name.empty() ? "no network" : PrinterUtil::WStringToString(name).c_str());

    // Those in range that can be offered for a printer; GetSsidList has the others too.
    std::vector<PrinterWifiApiStruct::WlanInfoData> networks;
    wifi.GetSupList(networks);
    for (const PrinterWifiApiStruct::WlanInfoData& network : networks) {
        std::printf("in range: %s, signal %d\n", PrinterUtil::WStringToString(network.ssid).c_str(),
                    static_cast<int>(network.attributes.signalQuality));
    }

    if (argc < 2) {
        return 0;
    }
    const bool answers = DeviceDiscover::PrinterNetInterface::GetInstance().CheckPing(argv[1]);
    std::printf("%s %s\n", argv[1], answers ? "answers" : "does not answer");
    return answers ? 0 : 1;
}
