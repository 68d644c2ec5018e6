// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/avahi_hang.h"

#include <algorithm>
#include <utility>

namespace Driverless {

AvahiHang::Finding AvahiHang::Look(std::optional<Time> waitsSince, Time now) {
    if (waitsSince != waited) {
        waited = waitsSince;
        silence = {};
    } else if (waited) {
        silence += std::min<std::chrono::steady_clock::duration>(now - last, 2 * kLookForHangEvery);
    }
    last = now;
    if (silence >= kSilenceToEnd) {
        return Finding::IsOver;
    }
    if (silence >= kSilenceToTell) {
        return std::exchange(told, true) ? Finding::None : Finding::Hangs;
    }
    // What was waited for has come.
    const bool progress = !waited || silence == std::chrono::steady_clock::duration::zero();
    return progress && std::exchange(told, false) ? Finding::Recovers : Finding::None;
}

}  // namespace Driverless
