// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_client_windows.h"

namespace Host {

// A notification of the service about an adapter.
struct WlanNotification {
    GUID adapter;
    DWORD code;        // a WLAN_NOTIFICATION_ACM
    std::string name;  // the network being joined
    DWORD reason;      // the reason code of the outcome
};

// A registration for the service's notifications, which ends with the object.
class WlanNotifications {
public:
    explicit WlanNotifications(const WlanClient& wlan);
    ~WlanNotifications();
    WlanNotifications(const WlanNotifications&) = delete;
    WlanNotifications& operator=(const WlanNotifications&) = delete;

    // The next notification; nothing when none arrives before `until`.
    std::optional<WlanNotification> Next(WlanClient::Clock::time_point until);

private:
    static void CALLBACK Take(WLAN_NOTIFICATION_DATA* data, void* context);
    void Put(const WLAN_NOTIFICATION_DATA& data);

    const WlanClient& client;
    std::mutex mutex;
    std::condition_variable added;
    std::deque<WlanNotification> waiting;
};

}  // namespace Host
