// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/PrinterDiscoverAPI/export.h"

namespace PrinterWifiApiStruct {

// Further properties of an access point.
struct WlanAttributes {
    std::int32_t signalQuality;  // 0 to 100
    std::uint32_t security;      // a sum of WlanSecurity; 0: an open network
};

enum WlanSecurity : std::uint32_t {
    WLAN_SECURITY_WEP = 1,
    WLAN_SECURITY_WPA_PERSONAL = 2,   // needs a pass phrase
    WLAN_SECURITY_WPA_ENTERPRISE = 4  // needs an account
};

// One access point. Passed between libraries inside a vector: its layout is fixed.
struct WlanInfoData {
    // The network's name; empty if the access point does not broadcast it. If the name is not
    // UTF-8, each of its bytes becomes one character.
    std::wstring ssid;
    WlanAttributes attributes;
    // True when a printer cannot be put on this network: the name is empty, is not UTF-8 or has
    // control characters; the network is ad hoc or offered by this host itself; or joining takes
    // WEP, an account, or encryption without a pass phrase.
    bool excludeFlag;
};
static_assert(sizeof(WlanAttributes) == 8);
static_assert(sizeof(WlanInfoData) == 48 && alignof(WlanInfoData) == 8);

}  // namespace PrinterWifiApiStruct

namespace PrinterDiscoverAPI {

// The host's own Wi-Fi, from the application's library PrinterDiscoverAPI. A replacement of the
// library provides this class. Safe from any thread. If there is no adapter or no Wi-Fi service, if
// the service ends or does not answer, or if the radio is off, the operation logs the reason and
// returns without a result; it does not throw.
class PRINTERDISCOVERAPI_API PrinterWifiAPI {
public:
    static PrinterWifiAPI& GetInstance();

    // Requests a new scan, waits up to 10 seconds for it, and appends the networks in range to
    // `networks`, the strongest first: one entry for each name, with the attributes of the
    // strongest access point, and one entry for each access point without a name. If the system
    // refuses a new scan so soon after the last, the results of the last scan are used. If a policy
    // forbids only the scan, the last results are used without waiting, and this is logged once
    // until scans are allowed again.
    void ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

    // Returns the access point that the host is joined to: the network's name, as in a scan; the
    // access point's hardware address ("00:11:22:AA:BB:CC", digits in upper case); and the host's
    // interface as the system names it ("wlan0", "Wi-Fi"). All three are empty when the host is not
    // joined.
    void QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                          std::wstring& interfaceName);

    // Joins the network `ssid`: a name as a scan returns it, or the name of a hidden network.
    // `passPhrase` has 8 to 63 characters, or is a key of 64 hexadecimal digits; it is empty for an
    // open network, and for a protected network whose secret the system has saved.
    //
    // If the network is not in range yet, waits for it first: on Linux up to 15 seconds with
    // repeated scans, on Windows up to 10 seconds for one scan. Then waits up to 30 seconds for the
    // outcome. Returns true when the host has joined. Otherwise logs the reason, ends the attempt
    // and returns false; on Linux the host then starts to return to its former network, if that is
    // open or saved. The system does not save the network because of this call. The pass phrase is
    // never logged.
    bool ConnectAP(std::wstring ssid, std::wstring passPhrase);

    PrinterWifiAPI(const PrinterWifiAPI&) = delete;
    PrinterWifiAPI& operator=(const PrinterWifiAPI&) = delete;

private:
    PrinterWifiAPI() = default;
    ~PrinterWifiAPI() = default;
};

}  // namespace PrinterDiscoverAPI
