#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/PrinterDiscoverAPI/export.h"

namespace PrinterWifiApiStruct {

// What else is known of an access point.
struct WlanAttributes {
    std::int32_t signalQuality;  // 0 to 100
    std::uint32_t security;      // bits of WlanSecurity; 0: open
};

enum WlanSecurity : std::uint32_t {
    WLAN_SECURITY_WEP = 1,
    WLAN_SECURITY_WPA_PERSONAL = 2,   // a pass phrase
    WLAN_SECURITY_WPA_ENTERPRISE = 4  // an account
};

// One access point. It crosses a library border inside a vector: its layout is fixed.
struct WlanInfoData {
    std::wstring ssid;  // network name; empty for one that does not broadcast it
    WlanAttributes attributes;
    bool excludeFlag;  // not to be offered to the user when a printer is put on a network
};
static_assert(sizeof(WlanAttributes) == 8);
static_assert(sizeof(WlanInfoData) == 48 && alignof(WlanInfoData) == 8);

}  // namespace PrinterWifiApiStruct

namespace PrinterDiscoverAPI {

// The application's Wi-Fi service, of the library PrinterDiscoverAPI: the host's own Wi-Fi. Whoever
// replaces that library provides this class. Safe from any thread.
class PRINTERDISCOVERAPI_API PrinterWifiAPI {
public:
    static PrinterWifiAPI& GetInstance();

    // Asks for a fresh scan, waits for it, and appends the networks in range to `networks`: one
    // entry a name, with the strongest access point's attributes; one entry for each access point
    // without a name. Appends nothing when the host has no Wi-Fi.
    void ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

    // The access point the host is joined to: its network name, its hardware address
    // ("00:11:22:33:44:55"), and the host's interface. All three empty when it is joined to none.
    void QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                          std::wstring& interfaceName);

    // Joins the network `ssid` with `passPhrase` (empty: an open network) and waits for the
    // outcome. True when the host is joined; false, with the reason logged, otherwise. The pass
    // phrase is never logged.
    bool ConnectAP(std::wstring ssid, std::wstring passPhrase);

    PrinterWifiAPI(const PrinterWifiAPI&) = delete;
    PrinterWifiAPI& operator=(const PrinterWifiAPI&) = delete;

private:
    PrinterWifiAPI() = default;
    ~PrinterWifiAPI() = default;
};

}  // namespace PrinterDiscoverAPI
