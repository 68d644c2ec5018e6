#pragma once

#include "host/PrinterDiscoverAPI/wifi/access_point.h"
#include "host/PrinterDiscoverAPI/wifi/windows/wlan_notifications_windows.h"

namespace Host {

// One attempt of an adapter to join a network, from its start to its outcome. An attempt that takes
// too long, or fails without a word about its end, is ended, lest it succeeds when nobody expects
// it any more.
class WlanAttempt {
public:
    WlanAttempt(const WlanClient& wlan, const GUID& wifiAdapter, const AccessPoint& accessPoint);

    // With the profile of that name, which the system has saved, or with one that is not to be.
    void StartSaved(const std::wstring& profileName);
    void StartNew(const std::wstring& profile);

    // Waits for the outcome; throws WifiProblem unless it is that the network is joined.
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
    std::string begun;                          // the network that the adapter began to join last
    DWORD reason = 0;                           // why it failed
    WlanClient::Clock::time_point lastFailure;  // of one of its tries, if any
};

}  // namespace Host
