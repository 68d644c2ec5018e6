// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/join_watch.h"

#include <algorithm>
#include <utility>

#include "modules/driverless/common/results.h"

namespace Driverless {

JoinWatch::JoinWatch(std::string networkName, WifiState before, Time start,
                     std::chrono::seconds limit)
    : name(std::move(networkName)), stateBefore(before), begin(start), deadline(start + limit) {}

std::optional<int> JoinWatch::Answered(const PrinterAttributes& attributes, Time now) {
    goneSince.reset();
    if (!attributes.wifiState) {
        return UnlessOver(now);
    }
    changed = changed || *attributes.wifiState != stateBefore;
    const std::optional<int> outcome =
        changed || now >= begin + kOldStateLasts ? Outcome(attributes) : std::nullopt;
    return outcome ? outcome : UnlessOver(now);
}

std::optional<int> JoinWatch::Outcome(const PrinterAttributes& attributes) const {
    switch (*attributes.wifiState) {
        case WifiState::On:
            // A printer that names another network has not joined the new one yet.
            return attributes.wifiName.empty() || attributes.wifiName == name ? std::optional(kOk)
                                                                              : std::nullopt;
        case WifiState::NotVisible:
            return kNotVisible;
        case WifiState::CannotJoin:
            return kCannotJoin;
        default:
            return std::nullopt;
    }
}

std::optional<int> JoinWatch::Silent(Time now) {
    goneSince.reset();
    return UnlessOver(now);
}

std::optional<int> JoinWatch::Gone(Time now) {
    if (!goneSince) {
        goneSince = now;
    }
    return now >= std::max(deadline, *goneSince + kLeastAbsence) ? std::optional(kNotConfirmed)
                                                                 : std::nullopt;
}

std::optional<int> JoinWatch::Announced() {
    return kOk;
}

bool JoinWatch::ShouldGoBack(bool elsewhere, Time now) const {
    const bool isTime = !elsewhere || (goneSince && now >= *goneSince + kPatienceElsewhere);
    return isTime && (!lastVisit || now >= *lastVisit + kBetweenVisits);
}

void JoinWatch::Visited(Time now) {
    lastVisit = now;
}

std::optional<int> JoinWatch::UnlessOver(Time now) const {
    return now >= deadline ? std::optional(kTimedOut) : std::nullopt;
}

}  // namespace Driverless
