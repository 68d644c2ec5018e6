// SPDX-License-Identifier: Apache-2.0

// The system's headers need this order.
#include "platform/os.h"

#include <winsock2.h>

#include <iphlpapi.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "base/secret.h"
#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/wifi/network_name.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"
#include "host/PrinterDiscoverAPI/wifi/windows/information_elements.h"
#include "host/PrinterDiscoverAPI/wifi/windows/wlan_attempt_windows.h"
#include "host/PrinterDiscoverAPI/wifi/windows/wlan_profile.h"

namespace Host {

namespace {

using Clock = WlanClient::Clock;

// How often the service is checked while a scan runs.
constexpr std::chrono::milliseconds kServiceCheckInterval{500};

// Drivers have 4 s for a scan; the end of the program may be waiting for this one.
constexpr std::chrono::seconds kScanLimitOnTheWayBack{5};

// A bit of the capabilities that an access point broadcasts.
constexpr unsigned kPrivacy = 0x10;

// A flag of a network in the service's list: the system has a saved profile.
constexpr DWORD kHasProfile = 2;

std::string BytesOf(const GUID& guid) {
    return {reinterpret_cast<const char*>(&guid), sizeof guid};
}

GUID GuidOf(const std::string& bytes) {
    GUID guid{};
    std::memcpy(&guid, bytes.data(), std::min(bytes.size(), sizeof guid));
    return guid;
}

std::string HardwareAddress(const DOT11_MAC_ADDRESS& address) {
    char text[18];
    std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", address[0], address[1],
                  address[2], address[3], address[4], address[5]);
    return text;
}

// The adapter's name as the system's settings show it.
std::wstring InterfaceName(const WLAN_INTERFACE_INFO& adapter) {
    NET_LUID luid{};
    wchar_t alias[NDIS_IF_MAX_STRING_SIZE + 1] = {};
    if (ConvertInterfaceGuidToLuid(&adapter.InterfaceGuid, &luid) == NO_ERROR &&
        ConvertInterfaceLuidToAlias(&luid, alias, std::size(alias)) == NO_ERROR) {
        return alias;
    }
    return adapter.strInterfaceDescription;
}

// The information elements of an entry, which follow it in the list; empty if they would lie
// outside the list.
std::string_view ElementsOf(const WLAN_BSS_LIST& list, const WLAN_BSS_ENTRY& entry) {
    const char* start = reinterpret_cast<const char*>(&list);
    const auto at = static_cast<std::size_t>(reinterpret_cast<const char*>(&entry) - start);
    const std::size_t size = list.dwTotalSize;
    if (entry.ulIeOffset > size - std::min(size, at) ||
        entry.ulIeSize > size - at - entry.ulIeOffset) {
        return {};
    }
    return {start + at + entry.ulIeOffset, entry.ulIeSize};
}

AccessPoint ToAccessPoint(const WLAN_BSS_LIST& list, const WLAN_BSS_ENTRY& entry) {
    AccessPoint accessPoint;
    accessPoint.name = NameOf(entry.dot11Ssid);
    accessPoint.quality = static_cast<int>(std::min<ULONG>(entry.uLinkQuality, 100));
    const std::string_view elements = ElementsOf(list, entry);
    accessPoint.protection =
        ProtectionOf(elements, (entry.usCapabilityInformation & kPrivacy) != 0);
    accessPoint.aesWithWpa = TakesAesWithWpa(elements);
    accessPoint.infrastructure = entry.dot11BssType == dot11_BSS_type_infrastructure;
    accessPoint.identity = HardwareAddress(entry.dot11Bssid);
    return accessPoint;
}

// Which of the adapter's radios are switched off, by hardware or by software.
struct RadioSwitches {
    bool anyOn = false;
    bool offByHardware = false;
};

RadioSwitches SwitchesOf(const WLAN_RADIO_STATE& state) {
    RadioSwitches switches;
    const std::size_t count =
        std::min<std::size_t>(state.dwNumberOfPhys, std::size(state.PhyRadioState));
    for (std::size_t index = 0; index < count; ++index) {
        const WLAN_PHY_RADIO_STATE& radio = state.PhyRadioState[index];
        const bool hardwareOff = radio.dot11HardwareRadioState == dot11_radio_state_off;
        switches.offByHardware = switches.offByHardware || hardwareOff;
        switches.anyOn = switches.anyOn ||
                         (!hardwareOff && radio.dot11SoftwareRadioState != dot11_radio_state_off);
    }
    switches.anyOn = switches.anyOn || count == 0;
    return switches;
}

// The Native Wifi of Windows.
class NativeWifi : public WifiService {
public:
    NativeWifi() : adapters(client.Adapters()) {
        if (adapters.empty()) {
            throw WifiProblem("the host has no Wi-Fi adapter", WifiProblem::Kind::kNoAdapter);
        }
    }

    void Scan(const std::string& name) override {
        RequireRadio();
        ScanFor(name, kScanLimit);
    }

    std::vector<AccessPoint> AccessPoints() override {
        std::vector<AccessPoint> found;
        for (const WLAN_INTERFACE_INFO& adapter : adapters) {
            if (IsReady(adapter)) {
                AddAccessPoints(adapter.InterfaceGuid, found);
            }
        }
        return found;
    }

    std::optional<JoinedAccessPoint> Joined() override {
        for (const WLAN_INTERFACE_INFO& adapter : adapters) {
            const auto connection = client.Query<WLAN_CONNECTION_ATTRIBUTES>(
                adapter.InterfaceGuid, wlan_intf_opcode_current_connection);
            if (!connection || connection->isState != wlan_interface_state_connected) {
                continue;
            }
            const WLAN_ASSOCIATION_ATTRIBUTES& joined = connection->wlanAssociationAttributes;
            if (joined.dot11BssType == dot11_BSS_type_infrastructure &&
                !NameOf(joined.dot11Ssid).empty()) {
                return JoinedAccessPoint{NameOf(joined.dot11Ssid),
                                         HardwareAddress(joined.dot11Bssid),
                                         InterfaceName(adapter)};
            }
        }
        return std::nullopt;
    }

    void Join(const AccessPoint& accessPoint, std::string_view passPhrase,
              std::chrono::seconds limit) override {
        const auto deadline = Clock::now() + limit;
        RequireRadio();
        const auto before = ConnectionOf(GuidOf(accessPoint.adapter));
        try {
            Attempt(accessPoint, passPhrase, deadline);
        } catch (const WifiProblem&) {
            if (before) {
                GoBackTo(*before, accessPoint.name);
            }
            throw;
        }
    }

    std::optional<HostConnection> Connection() override {
        for (const WLAN_INTERFACE_INFO& adapter : adapters) {
            if (auto connection = ConnectionOf(adapter.InterfaceGuid)) {
                return connection;
            }
        }
        return std::nullopt;
    }

    void Resume(const HostConnection& connection) override {
        const auto now = ConnectionOf(GuidOf(connection.adapter));
        if (!now || now->profile != connection.profile) {
            ConnectAsBefore(connection);
        }
    }

private:
    void Attempt(const AccessPoint& accessPoint, std::string_view passPhrase,
                 Clock::time_point deadline) const {
        const GUID adapter = GuidOf(accessPoint.adapter);
        WlanAttempt attempt(client, adapter, accessPoint);
        if (!passPhrase.empty() || IsOpen(accessPoint)) {
            std::wstring profile = WlanProfile(accessPoint, passPhrase);
            const Base::WipeAtEnd wiped(profile);
            attempt.StartNew(profile);
        } else {
            attempt.StartSaved(SavedProfile(adapter, accessPoint.name));
        }
        attempt.Await(deadline);
    }

    static bool IsOpen(const AccessPoint& accessPoint) {
        return (accessPoint.protection & ~kOpportunistic) == 0;
    }

    // The connection that an adapter has or is making.
    std::optional<HostConnection> ConnectionOf(const GUID& adapter) const {
        const auto connection =
            client.Query<WLAN_CONNECTION_ATTRIBUTES>(adapter, wlan_intf_opcode_current_connection);
        if (!connection || connection->isState == wlan_interface_state_disconnected ||
            connection->isState == wlan_interface_state_disconnecting ||
            connection->wlanAssociationAttributes.dot11BssType != dot11_BSS_type_infrastructure) {
            return std::nullopt;
        }
        std::wstring profile(std::begin(connection->strProfileName),
                             std::end(connection->strProfileName));
        profile.resize(std::min(profile.find(L'\0'), profile.size()));
        return HostConnection{BytesOf(adapter), Base::ToUtf8(profile),
                              NameOf(connection->wlanAssociationAttributes.dot11Ssid)};
    }

    // After an attempt to join the network `failed`, which took the adapter. What keeps it from
    // this is less than what made the attempt fail.
    void GoBackTo(const HostConnection& connection, const std::string& failed) const {
        try {
            const auto now = ConnectionOf(GuidOf(connection.adapter));
            if (!now || now->network == failed) {
                ConnectAsBefore(connection);
            }
        } catch (const WifiProblem& problem) {
            Report(LOG_LEVEL_WARNING,
                   L"could not rejoin the previous network: " + Base::FromUtf8(problem.what()),
                   L"PrinterWifiAPI");
        }
    }

    void ConnectAsBefore(const HostConnection& connection) const {
        const GUID adapter = GuidOf(connection.adapter);
        if (IsSaved(adapter, connection.profile)) {
            // The service looks for the network itself, and sees more than the last scan did.
            AccessPoint point;
            point.name = connection.network;
            WlanAttempt(client, adapter, point).StartSaved(Base::FromUtf8(connection.profile));
            return;
        }
        const auto point = Sought(connection);
        if (!point) {
            throw WifiProblem("the network " + connection.network + " is not in range");
        }
        if (!IsOpen(*point)) {
            throw WifiProblem("the network " + connection.network + " is not saved");
        }
        WlanAttempt(client, adapter, *point).StartNew(WlanProfile(*point, {}));
    }

    // What an adapter last saw may be old: it has been on another network meanwhile.
    std::optional<AccessPoint> Sought(const HostConnection& connection) const {
        auto point = InRange(connection);
        if (!point) {
            try {
                ScanFor(connection.network, kScanLimitOnTheWayBack);
            } catch (const WifiProblem&) {
                return std::nullopt;
            }
            point = InRange(connection);
        }
        return point;
    }

    void ScanFor(const std::string& name, std::chrono::seconds limit) const {
        const auto deadline = Clock::now() + limit;
        WlanNotifications notifications(client);
        AwaitScans(notifications, RequestScans(name), deadline);
    }

    // The access point of a connection; one that hides its name may be any of those without, and
    // shows nothing else of its network.
    std::optional<AccessPoint> InRange(const HostConnection& connection) const {
        std::vector<AccessPoint> points;
        AddAccessPoints(GuidOf(connection.adapter), points);
        std::optional<AccessPoint> hidden;
        for (AccessPoint& point : points) {
            if (point.name == connection.network) {
                return point;
            }
            if (point.name.empty()) {
                point.name = connection.network;
                hidden = point;
            }
        }
        return hidden;
    }

    // In range or not.
    bool IsSaved(const GUID& adapter, const std::string& profile) const {
        WLAN_PROFILE_INFO_LIST* list = nullptr;
        RequireWlan("WlanGetProfileList",
                    TheWlanLibrary().getProfileList(client.Handle(), &adapter, nullptr, &list));
        const WlanMemory<WLAN_PROFILE_INFO_LIST> owner(list);
        const std::wstring name = Base::FromUtf8(profile);
        return std::any_of(
            list->ProfileInfo, list->ProfileInfo + list->dwNumberOfItems,
            [&name](const WLAN_PROFILE_INFO& saved) { return saved.strProfileName == name; });
    }

    static bool IsReady(const WLAN_INTERFACE_INFO& adapter) {
        return adapter.isState != wlan_interface_state_not_ready;
    }

    void RequireRadio() const {
        RadioSwitches switches;
        for (const WLAN_INTERFACE_INFO& adapter : adapters) {
            const auto state =
                client.Query<WLAN_RADIO_STATE>(adapter.InterfaceGuid, wlan_intf_opcode_radio_state);
            const RadioSwitches its = SwitchesOf(state.value_or(WLAN_RADIO_STATE{}));
            switches.anyOn = switches.anyOn || its.anyOn;
            switches.offByHardware = switches.offByHardware || its.offByHardware;
        }
        if (!switches.anyOn) {
            throw WifiProblem(switches.offByHardware
                                  ? "Wi-Fi is switched off by the host's hardware"
                                  : "Wi-Fi is switched off");
        }
        if (std::none_of(adapters.begin(), adapters.end(), IsReady)) {
            throw WifiProblem(Base::ToUtf8(InterfaceName(adapters.front())) + " is not ready");
        }
    }

    // The adapters that are scanning.
    std::vector<GUID> RequestScans(const std::string& name) const {
        DOT11_SSID ssid = SsidOf(name);
        std::vector<GUID> scanning;
        DWORD refusal = ERROR_SUCCESS;
        for (const WLAN_INTERFACE_INFO& adapter : adapters) {
            if (!IsReady(adapter)) {
                continue;
            }
            const DWORD error =
                TheWlanLibrary().scan(client.Handle(), &adapter.InterfaceGuid,
                                      name.empty() ? nullptr : &ssid, nullptr, nullptr);
            if (error == ERROR_SUCCESS || error == ERROR_BUSY) {
                scanning.push_back(adapter.InterfaceGuid);
            } else {
                refusal = error;
            }
        }
        if (scanning.empty()) {
            RequireWlan("WlanScan", refusal);
        }
        return scanning;
    }

    static bool EndsScan(const WlanNotification& notification) {
        return notification.code == wlan_notification_acm_scan_complete ||
               notification.code == wlan_notification_acm_scan_fail ||
               notification.code == wlan_notification_acm_interface_removal;
    }

    void AwaitScans(WlanNotifications& notifications, std::vector<GUID> scanning,
                    Clock::time_point deadline) const {
        while (!scanning.empty() && Clock::now() < deadline) {
            Undertaking::GoOn();
            const auto notification =
                notifications.Next(std::min(deadline, Clock::now() + kServiceCheckInterval));
            if (notification && EndsScan(*notification)) {
                std::erase(scanning, notification->adapter);
            } else if (!notification) {
                // Throws when the service has ended.
                client.Query<WLAN_INTERFACE_STATE>(scanning.front(),
                                                   wlan_intf_opcode_interface_state);
            }
        }
    }

    void AddAccessPoints(const GUID& adapter, std::vector<AccessPoint>& found) const {
        WLAN_BSS_LIST* list = nullptr;
        const DWORD error = TheWlanLibrary().getNetworkBssList(
            client.Handle(), &adapter, nullptr, dot11_BSS_type_any, FALSE, nullptr, &list);
        if (error == ERROR_NOT_FOUND) {
            return;  // the adapter is gone
        }
        RequireWlan("WlanGetNetworkBssList", error);
        const WlanMemory<WLAN_BSS_LIST> owner(list);
        for (DWORD index = 0; index < list->dwNumberOfItems; ++index) {
            found.push_back(ToAccessPoint(*list, list->wlanBssEntries[index]));
            found.back().adapter = BytesOf(adapter);
        }
    }

    std::wstring SavedProfile(const GUID& adapter, const std::string& name) const {
        WLAN_AVAILABLE_NETWORK_LIST* list = nullptr;
        RequireWlan(
            "WlanGetAvailableNetworkList",
            TheWlanLibrary().getAvailableNetworkList(client.Handle(), &adapter, 0, nullptr, &list));
        const WlanMemory<WLAN_AVAILABLE_NETWORK_LIST> owner(list);
        for (DWORD index = 0; index < list->dwNumberOfItems; ++index) {
            const WLAN_AVAILABLE_NETWORK& network = list->Network[index];
            if ((network.dwFlags & kHasProfile) != 0 && NameOf(network.dot11Ssid) == name) {
                return network.strProfileName;
            }
        }
        throw WifiProblem("it needs a pass phrase, and the host has none saved");
    }

    const WlanClient client;
    const std::vector<WLAN_INTERFACE_INFO> adapters;
};

}  // namespace

std::unique_ptr<WifiService> OpenWifiService() {
    return std::make_unique<NativeWifi>();
}

}  // namespace Host
