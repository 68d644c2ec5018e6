// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/left_place.h"

#include <mutex>
#include <optional>

#include "host/PrinterDiscoverAPI/wifi/join_request.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

// Never destroyed: threads run until the process is gone.
struct Place {
    std::mutex mutex;
    std::optional<HostConnection> connection;
};

Place& ThePlace() {
    static Place& place = *new Place;
    return place;
}

bool IsSame(const HostConnection& one, const HostConnection& other) {
    return one.profile == other.profile || (!one.network.empty() && one.network == other.network);
}

}  // namespace

void RememberPlace() {
    const std::lock_guard lock(ThePlace().mutex);
    ThePlace().connection.reset();
    ThePlace().connection = OpenWifiService()->Connection();
}

bool GoBackFrom(const std::wstring& network) {
    const std::lock_guard lock(ThePlace().mutex);
    const std::optional<HostConnection>& left = ThePlace().connection;
    if (!left) {
        return false;
    }
    const auto service = OpenWifiService();
    const auto now = service->Connection();
    if (now && IsSame(*now, *left)) {
        return true;
    }
    if (now && now->network != JoinRequest(network, {}).Name()) {
        return false;
    }
    service->Resume(*left);
    return true;
}

}  // namespace Host
