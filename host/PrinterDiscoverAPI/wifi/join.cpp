// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/join.h"

#include <vector>

#include "host/PrinterDiscoverAPI/wifi/undertaking.h"

namespace Host {

namespace {

void JoinVisible(WifiService& service, const JoinRequest& request, std::chrono::seconds limit) {
    std::vector<AccessPoint> accessPoints = service.AccessPoints();
    const AccessPoint* chosen = request.Choose(accessPoints);
    if (chosen == nullptr) {
        service.Scan(request.Name());
        accessPoints = service.AccessPoints();
        chosen = request.Choose(accessPoints);
    }
    if (chosen == nullptr) {
        throw WifiProblem("no access point of that name is in range");
    }
    Undertaking::GoOn();
    service.Join(*chosen, request.PassPhrase(), limit);
}

}  // namespace

void Join(WifiService& service, const JoinRequest& request, std::chrono::seconds limit) {
    try {
        JoinVisible(service, request, limit);
    } catch (const WifiProblem& problem) {
        throw WifiProblem(request.WithoutSecret(problem.what()), problem.ItsKind());
    }
}

}  // namespace Host
