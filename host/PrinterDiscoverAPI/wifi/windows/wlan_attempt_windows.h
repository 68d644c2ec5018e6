// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "host/PrinterDiscoverAPI/wifi/access_point.h"
#include "host/PrinterDiscoverAPI/wifi/windows/wlan_notifications_windows.h"

namespace Host {

// One attempt of an adapter to join a network, from its start to its outcome. An attempt that takes
// too long, or fails without a final notification, is cancelled, so that it cannot succeed later.
class WlanAttempt {
public:
    WlanAttempt(const WlanClient& wlan, const GUID& wifiAdapter, const AccessPoint& accessPoint);

    // Starts the attempt with the saved profile of that name, or with a profile that is not saved.
    void StartSaved(const std::wstring& profileName);
    void StartNew(const std::wstring& profile);

    // Waits for the outcome. Throws WifiProblem unless the network was joined.
    void Await(WlanClient::Clock::time_point deadline);

private:
    enum class Outcome { kNone, kJoined, kFailed };

    void Start(WLAN_CONNECTION_MODE mode, const std::wstring& profile);
    Outcome OutcomeBy(const WlanNotification& notification);
    void RequireAdapter() const;
    bool IsUnderWay() const;
    void RequireGoingOn() const;
    [[noreturn]] void GiveUp(const std::string& why) const;

    const WlanClient& client;
    WlanNotifications notifications;
    const GUID adapter;
    const std::string name;
    std::string begun;                          // the network that the adapter last started to join
    DWORD reason = 0;                           // the reason of the failure
    WlanClient::Clock::time_point lastFailure;  // the time of the last failed try, if any
};

}  // namespace Host
