// SPDX-License-Identifier: Apache-2.0

#pragma once

// Tells of an Avahi that stops answering in the midst of a scan. Knows no clock: it is told what
// time it is. A process that was stopped itself did not wait meanwhile.

#include <chrono>
#include <optional>

namespace Driverless {

class AvahiHang {
public:
    using Time = std::chrono::steady_clock::time_point;

    enum class Finding {
        None,
        Hangs,     // once: it has not answered for a while
        Recovers,  // once: it has answered after that
        IsOver,    // it is not waited for any longer
    };

    // To be called at least every `kLookForHangEvery`, with the time since when an answer of
    // Avahi's is waited for, or nothing when none is.
    Finding Look(std::optional<Time> waitsSince, Time now);

    // Whether Hangs was found last, and not Recovers.
    bool IsTold() const { return told; }

private:
    std::optional<Time> waited;  // the one that is waited for
    Time last;
    std::chrono::steady_clock::duration silence{};
    bool told = false;
};

constexpr std::chrono::milliseconds kLookForHangEvery{500};
constexpr std::chrono::milliseconds kSilenceToTell{2000};
constexpr std::chrono::milliseconds kSilenceToEnd{10000};

}  // namespace Driverless
