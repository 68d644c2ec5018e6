#pragma once

// What becomes of a printer that was given a network, from what it says of itself. Knows no network
// and no clock: it is told what was seen and when.

#include <chrono>
#include <optional>
#include <string>

#include "printer.h"

namespace Driverless {

// A state that stood before the printer was told may be left over from an earlier attempt. It
// counts when another one was seen since, or when it stands for this long.
constexpr std::chrono::seconds kOldStateLasts{3};

// A printer may have to close its own network in order to join another. When it does not open it
// again for this long, it has joined: one that cannot join does.
constexpr std::chrono::seconds kGoneForGood{10};

class JoinWatch {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Told at `start` to join the network `networkName`, while its state was `before`.
    JoinWatch(std::string networkName, WifiState before, Time start, std::chrono::seconds limit);

    // Each of these gives the result of PrinterAPNetConfigEvent when the outcome is known.
    std::optional<int> Answered(const PrinterAttributes& attributes, Time now);
    // It does not answer, though the host is in its network.
    std::optional<int> Silent(Time now);
    // The host is no longer in its network.
    std::optional<int> Gone(Time now);

private:
    std::optional<int> Outcome(const PrinterAttributes& attributes) const;
    std::optional<int> UnlessOver(Time now) const;

    const std::string name;
    const WifiState stateBefore;
    const Time begin;
    const Time deadline;
    bool changed = false;
    std::optional<Time> goneSince;
};

}  // namespace Driverless
