// SPDX-License-Identifier: Apache-2.0

#pragma once

// The host's side of the network: pinging a printer, and the host's own Wi-Fi. The application's
// library PrinterDiscoverAPI does the work. Every operation may be called from any thread.

#include <string>
#include <vector>

#include "DeviceDiscover/export.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace DeviceDiscover {

class DEVICEDISCOVER_API PrinterNetInterface {
public:
    static PrinterNetInterface& GetInstance();

    // Returns whether a printer answers at `address`, an IPv4 address in dotted text. Sends up to
    // three pings, waits up to 100 ms for each, and stops at the first answer. False for an invalid
    // address.
    bool CheckPing(const std::string& address);

    PrinterNetInterface(const PrinterNetInterface&) = delete;
    PrinterNetInterface& operator=(const PrinterNetInterface&) = delete;

private:
    PrinterNetInterface();
    virtual ~PrinterNetInterface();
};

class DEVICEDISCOVER_API PrinterWifiInterface {
public:
    static PrinterWifiInterface& GetInstance();
    PrinterWifiInterface(const PrinterWifiInterface& other);
    PrinterWifiInterface& operator=(const PrinterWifiInterface& other);

    // Appends the networks in range, including networks without a name and excluded ones
    // (WlanInfoData::excludeFlag).
    void GetSsidList(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

    // Returns the access point that the host is joined to: its network name, its hardware address,
    // and the name of the host's interface. All three are empty when the host is not joined.
    void QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                          std::wstring& interfaceName);

    // Joins the network `ssid` and waits for the outcome. True when the host has joined.
    bool ConnectAP(std::wstring ssid, std::wstring passPhrase);

    // Replaces `networks` with the networks in range that a printer can be put on: those with a
    // name that are not excluded. Keeps the order of the scan.
    void GetSupList(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

private:
    PrinterWifiInterface();
    ~PrinterWifiInterface();

    std::vector<PrinterWifiApiStruct::WlanInfoData> list;
};

}  // namespace DeviceDiscover
