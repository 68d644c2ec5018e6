// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_notifications_windows.h"

#include <cstddef>

namespace Host {

namespace {

bool IsAboutJoining(DWORD code) {
    return code == wlan_notification_acm_connection_start ||
           code == wlan_notification_acm_connection_complete ||
           code == wlan_notification_acm_connection_attempt_fail;
}

}  // namespace

WlanNotifications::WlanNotifications(const WlanClient& wlan) : client(wlan) {
    RequireWlan("WlanRegisterNotification",
                TheWlanLibrary().registerNotification(client.Handle(), WLAN_NOTIFICATION_SOURCE_ACM,
                                                      FALSE, Take, this, nullptr, nullptr));
}

WlanNotifications::~WlanNotifications() {
    // Returns when no notification is running any more.
    TheWlanLibrary().registerNotification(client.Handle(), WLAN_NOTIFICATION_SOURCE_NONE, FALSE,
                                          nullptr, nullptr, nullptr, nullptr);
}

std::optional<WlanNotification> WlanNotifications::Next(WlanClient::Clock::time_point until) {
    std::unique_lock lock(mutex);
    if (!added.wait_until(lock, until, [this] { return !waiting.empty(); })) {
        return std::nullopt;
    }
    WlanNotification next = std::move(waiting.front());
    waiting.pop_front();
    return next;
}

// Called on a thread of the service's library.
void CALLBACK WlanNotifications::Take(WLAN_NOTIFICATION_DATA* data, void* context) {
    if (data == nullptr || data->NotificationSource != WLAN_NOTIFICATION_SOURCE_ACM) {
        return;
    }
    try {
        static_cast<WlanNotifications*>(context)->Put(*data);
    } catch (...) {
        // The adapters' states are checked even without this notification.
        return;
    }
}

void WlanNotifications::Put(const WLAN_NOTIFICATION_DATA& data) {
    WlanNotification notification{data.InterfaceGuid, data.NotificationCode, {}, 0};
    if (IsAboutJoining(data.NotificationCode) && data.pData != nullptr &&
        data.dwDataSize >= offsetof(WLAN_CONNECTION_NOTIFICATION_DATA, dwFlags)) {
        const auto& joining = *static_cast<const WLAN_CONNECTION_NOTIFICATION_DATA*>(data.pData);
        notification.name = NameOf(joining.dot11Ssid);
        notification.reason = joining.wlanReasonCode;
    }
    const std::lock_guard lock(mutex);
    waiting.push_back(std::move(notification));
    added.notify_one();
}

}  // namespace Host
