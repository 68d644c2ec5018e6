// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/avahi_silence.h"

#include "modules/driverless/common/diagnostics.h"

namespace Driverless {

namespace {

constexpr std::chrono::milliseconds kToldDuringScan{1500};
constexpr std::chrono::milliseconds kToldAtStop{500};

}  // namespace

void AvahiSilence::TellDuringScan(Time now) {
    Tell(now, kToldDuringScan);
}

void AvahiSilence::TellAtStop(Time now) {
    Tell(now, kToldAtStop);
}

AvahiSilence::Time AvahiSilence::Due() const {
    return begin + kToldDuringScan;
}

void AvahiSilence::Tell(Time now, std::chrono::milliseconds silence) {
    if (!answered && now >= begin + silence && !told.exchange(true)) {
        ReportProblem(
            "Avahi or the system's D-Bus runs, but does not answer: no printer can be found");
    }
}

}  // namespace Driverless
