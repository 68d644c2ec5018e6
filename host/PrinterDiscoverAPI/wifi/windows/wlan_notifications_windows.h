#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_client_windows.h"

namespace Host {

// What the service tells of an adapter.
struct WlanNotification {
    GUID adapter;
    DWORD code;        // a WLAN_NOTIFICATION_ACM
    std::string name;  // of the network that is being joined
    DWORD reason;      // why that went as it did
};

// A registration for what the service tells; ends with the object.
class WlanNotifications {
public:
    explicit WlanNotifications(const WlanClient& wlan);
    ~WlanNotifications();
    WlanNotifications(const WlanNotifications&) = delete;
    WlanNotifications& operator=(const WlanNotifications&) = delete;

    // The next one; nothing when none comes until then.
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
