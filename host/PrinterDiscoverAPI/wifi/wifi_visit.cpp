// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/wifi_visit.h"

#include <mutex>
#include <optional>
#include <utility>

#include "host/PrinterDiscoverAPI/wifi/join.h"
#include "host/PrinterDiscoverAPI/wifi/join_request.h"
#include "host/PrinterDiscoverAPI/wifi/undertaking.h"
#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

struct Visit {
    std::string network;
    std::optional<HostConnection> left;
};

// Never destroyed: threads run until the process is gone.
struct Visits {
    std::mutex mutex;  // held while a visit begins or ends
    std::optional<Visit> current;
};

Visits& TheVisits() {
    static Visits& visits = *new Visits;
    return visits;
}

bool IsOn(WifiService& service, const std::string& network) {
    const auto joined = service.Joined();
    return joined && joined->name == network;
}

}  // namespace

void VisitNetwork(const std::wstring& network, std::chrono::seconds limit) {
    const Undertaking undertaking;
    const std::lock_guard lock(TheVisits().mutex);
    const JoinRequest request(network, {});
    const auto service = OpenWifiService();
    if (IsOn(*service, request.Name())) {
        return;
    }
    Undertaking::GoOn();
    auto& current = TheVisits().current;
    if (!current) {
        current = Visit{request.Name(), service->Connection()};
    }
    Join(*service, request, limit);
}

void EndNetworkVisit() {
    const std::lock_guard lock(TheVisits().mutex);
    const std::optional<Visit> ended = std::exchange(TheVisits().current, std::nullopt);
    if (!ended || !ended->left) {
        return;
    }
    const auto service = OpenWifiService();
    const auto joined = service->Joined();
    if (!joined || joined->name == ended->network) {
        service->Resume(*ended->left);
    }
}

}  // namespace Host
