#pragma once

// The host's own side of a network: whether a printer answers, and the host's Wi-Fi. What is done
// is done by the application's library PrinterDiscoverAPI. Every operation may be called from any
// thread.

#include <string>
#include <vector>

#include "DeviceDiscover/export.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace DeviceDiscover {

class DEVICEDISCOVER_API PrinterNetInterface {
public:
    static PrinterNetInterface& GetInstance();

    // Whether a printer answers at `address`, IPv4 in dotted text: up to three pings, 100 ms each,
    // the first answer counts. An address that makes no sense is one that does not answer.
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

    // Appends the networks in range, those without a name and those not to be offered included.
    void GetSsidList(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

    // The access point the host is joined to: its network name, its hardware address, and the
    // host's interface. All three empty when it is joined to none.
    void QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                          std::wstring& interfaceName);

    // Joins a network and waits for the outcome: true when the host is joined.
    bool ConnectAP(std::wstring ssid, std::wstring passPhrase);

    // Replaces `networks` with those in range that can be offered to the user when a printer is put
    // on a network: they have a name and are not excluded. Their order is the scan's.
    void GetSupList(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

private:
    PrinterWifiInterface();
    ~PrinterWifiInterface();

    std::vector<PrinterWifiApiStruct::WlanInfoData> list;
};

}  // namespace DeviceDiscover
