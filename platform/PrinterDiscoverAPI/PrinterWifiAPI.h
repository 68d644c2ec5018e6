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
    std::uint32_t security;      // a sum of WlanSecurity; 0: joined without a secret
};

enum WlanSecurity : std::uint32_t {
    WLAN_SECURITY_WEP = 1,
    WLAN_SECURITY_WPA_PERSONAL = 2,   // a pass phrase
    WLAN_SECURITY_WPA_ENTERPRISE = 4  // an account
};

// One access point. It crosses a library border inside a vector: its layout is fixed.
struct WlanInfoData {
    // The network's name; empty for one that does not broadcast it. Of a name that is not UTF-8
    // each byte is one character.
    std::wstring ssid;
    WlanAttributes attributes;
    // Not to be offered to the user when a printer is put on a network, which takes a name that is
    // text, a pass phrase or none, and an access point: set without a name, for a name that is not
    // UTF-8 or has control characters, for a network of hosts among themselves or that this host
    // offers, and where only WEP, an account, or encryption without a pass phrase lets in.
    bool excludeFlag;
};
static_assert(sizeof(WlanAttributes) == 8);
static_assert(sizeof(WlanInfoData) == 48 && alignof(WlanInfoData) == 8);

}  // namespace PrinterWifiApiStruct

namespace PrinterDiscoverAPI {

// The application's Wi-Fi service, of the library PrinterDiscoverAPI: the host's own Wi-Fi. Whoever
// replaces that library provides this class. Safe from any thread. What stands in the way - no
// adapter, no service, a service that ends or does not answer, a radio that is off - is logged, and
// the operation comes back without a result; none throws because of it.
class PRINTERDISCOVERAPI_API PrinterWifiAPI {
public:
    static PrinterWifiAPI& GetInstance();

    // Asks for a fresh scan, waits for it up to 10 seconds, and appends the networks in range to
    // `networks`, the strongest first: one entry a name, with the strongest access point's
    // attributes; one entry for each access point without a name. Where the system refuses to scan
    // again so soon, what it found last counts; so too where a policy forbids the scan only, which
    // is logged once until it is allowed: then nothing is waited for.
    void ScanWifiAPBySsid(std::vector<PrinterWifiApiStruct::WlanInfoData>& networks);

    // The access point the host is joined to: its network's name, as in a scan; its own hardware
    // address ("00:11:22:AA:BB:CC", digits in upper case); and the host's interface as the system
    // names it ("wlan0", "Wi-Fi"). All three are empty when it is joined to none.
    void QueryConnectedAP(std::wstring& ssid, std::wstring& hardwareAddress,
                          std::wstring& interfaceName);

    // Joins the network `ssid`, as a scan gives its name or hidden, with `passPhrase`, 8 to 63
    // characters or a key of 64 hexadecimal digits; without one an open network, or a protected one
    // with what the system has saved of it. Waits for the outcome up to 30 seconds, and before
    // that for a network that is not in sight: on Linux up to 15, in which it is scanned for again
    // and again, on Windows up to 10 for one scan. True
    // when the host is joined; false, with the reason logged, otherwise: the attempt is then ended,
    // and on Linux the host begins to connect as before it, where that was an open or a saved
    // network. The system is not to remember the network because of it. The pass phrase is never
    // logged.
    bool ConnectAP(std::wstring ssid, std::wstring passPhrase);

    PrinterWifiAPI(const PrinterWifiAPI&) = delete;
    PrinterWifiAPI& operator=(const PrinterWifiAPI&) = delete;

private:
    PrinterWifiAPI() = default;
    ~PrinterWifiAPI() = default;
};

}  // namespace PrinterDiscoverAPI
