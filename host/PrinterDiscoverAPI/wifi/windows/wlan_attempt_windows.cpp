// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_attempt_windows.h"

#include <algorithm>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

// How often the adapter's state is checked when no notification arrives.
constexpr std::chrono::milliseconds kAdapterCheckInterval{500};
// After a failed try the service may start another, or report the end of the attempt.
constexpr std::chrono::seconds kNextTry{3};

constexpr DWORD kNetworkNotAvailable = 0x2800B;
constexpr DWORD kPassPhraseMismatch = 0x48014;

std::string DescribeReason(DWORD reason) {
    if (reason == kPassPhraseMismatch) {
        return "the pass phrase is wrong";
    }
    if (reason == kNetworkNotAvailable) {
        return "the network is not in range any more";
    }
    wchar_t text[512] = {};
    if (TheWlanLibrary().reasonCodeToString(reason, static_cast<DWORD>(std::size(text)), text,
                                            nullptr) != ERROR_SUCCESS) {
        return "the system's Wi-Fi service gave up, reason " + std::to_string(reason);
    }
    text[std::size(text) - 1] = L'\0';
    return "the system's Wi-Fi service says: " + Base::ToUtf8(text);
}

bool IsJoining(WLAN_INTERFACE_STATE state) {
    return state == wlan_interface_state_discovering || state == wlan_interface_state_associating ||
           state == wlan_interface_state_authenticating;
}

}  // namespace

WlanAttempt::WlanAttempt(const WlanClient& wlan, const GUID& wifiAdapter,
                         const AccessPoint& accessPoint)
    : client(wlan),
      notifications(wlan),
      adapter(wifiAdapter),
      name(accessPoint.name),
      begun(name) {}

void WlanAttempt::StartSaved(const std::wstring& profileName) {
    Start(wlan_connection_mode_profile, profileName);
}

void WlanAttempt::StartNew(const std::wstring& profile) {
    Start(wlan_connection_mode_temporary_profile, profile);
}

void WlanAttempt::Start(WLAN_CONNECTION_MODE mode, const std::wstring& profile) {
    DOT11_SSID ssid = SsidOf(name);
    WLAN_CONNECTION_PARAMETERS parameters{};
    parameters.wlanConnectionMode = mode;
    parameters.strProfile = profile.c_str();
    parameters.pDot11Ssid = name.empty() ? nullptr : &ssid;  // without one, the profile's
    parameters.dot11BssType = dot11_BSS_type_infrastructure;
    RequireWlan("WlanConnect",
                TheWlanLibrary().connect(client.Handle(), &adapter, &parameters, nullptr));
}

void WlanAttempt::Await(WlanClient::Clock::time_point deadline) {
    const auto limit = std::chrono::ceil<std::chrono::seconds>(deadline - WlanClient::Clock::now());
    for (;;) {
        RequireGoingOn();
        const auto now = WlanClient::Clock::now();
        const auto notification =
            notifications.Next(std::min(deadline, now + kAdapterCheckInterval));
        const Outcome outcome = notification ? OutcomeBy(*notification) : Outcome::kNone;
        if (outcome == Outcome::kJoined) {
            return;
        }
        if (outcome == Outcome::kFailed) {
            throw WifiProblem(DescribeReason(reason));
        }
        if (reason != 0 && now - lastFailure >= kNextTry) {
            GiveUp(DescribeReason(reason));
        }
        if (notification) {
            continue;
        }
        RequireAdapter();
        if (now >= deadline) {
            GiveUp("not joined within " + std::to_string(limit.count()) + " s");
        }
    }
}

// Throws when the program is about to end.
void WlanAttempt::RequireGoingOn() const {
    try {
        Undertaking::GoOn();
    } catch (const WifiProblem& problem) {
        GiveUp(problem.what());
    }
}

// Other programs may be joining networks with the same adapter.
WlanAttempt::Outcome WlanAttempt::OutcomeBy(const WlanNotification& notification) {
    if (notification.adapter != adapter) {
        return Outcome::kNone;
    }
    if (notification.code == wlan_notification_acm_interface_removal) {
        throw WifiProblem("the Wi-Fi adapter was removed");
    }
    if (notification.code == wlan_notification_acm_connection_start) {
        begun = notification.name;
    }
    if (notification.name != name) {
        return Outcome::kNone;
    }
    if (notification.code == wlan_notification_acm_connection_attempt_fail) {
        reason = notification.reason;
        lastFailure = WlanClient::Clock::now();
    } else if (notification.code == wlan_notification_acm_connection_complete) {
        if (notification.reason == 0) {
            return Outcome::kJoined;
        }
        // The reason of the last try says more than the final failure.
        reason = reason != 0 ? reason : notification.reason;
        return Outcome::kFailed;
    }
    return Outcome::kNone;
}

void WlanAttempt::GiveUp(const std::string& why) const {
    if (IsUnderWay()) {
        TheWlanLibrary().disconnect(client.Handle(), &adapter, nullptr);
    }
    throw WifiProblem(why);
}

// Whether the adapter is working on this attempt. Some drivers name the network only after joining.
bool WlanAttempt::IsUnderWay() const {
    const auto connection =
        client.Query<WLAN_CONNECTION_ATTRIBUTES>(adapter, wlan_intf_opcode_current_connection);
    if (connection && connection->wlanAssociationAttributes.dot11Ssid.uSSIDLength > 0) {
        return NameOf(connection->wlanAssociationAttributes.dot11Ssid) == name;
    }
    const auto state =
        client.Query<WLAN_INTERFACE_STATE>(adapter, wlan_intf_opcode_interface_state);
    return begun == name && IsJoining(state.value_or(wlan_interface_state_disconnected));
}

// Throws when the service or the adapter is gone.
void WlanAttempt::RequireAdapter() const {
    if (!client.Query<WLAN_INTERFACE_STATE>(adapter, wlan_intf_opcode_interface_state)) {
        throw WifiProblem("the Wi-Fi adapter was removed");
    }
}

}  // namespace Host
