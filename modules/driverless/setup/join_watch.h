// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides whether a printer has joined its new network, from the states that it reports. Knows no
// network and no clock: callers report observations with their time.

#include <chrono>
#include <optional>
#include <string>

#include "modules/driverless/printer/printer.h"

namespace Driverless {

// A state that the printer had before the request may be left over from an earlier attempt. It
// counts if another state was seen since, or if it lasts this long.
constexpr std::chrono::seconds kOldStateLasts{3};

// A printer may have to close its own network in order to join another, and opens it again if it
// cannot join. It gets at least this long, whatever the time limit; staying away proves nothing.
constexpr std::chrono::seconds kLeastAbsence{10};

// A host on another network leaves it only after this time: a closed network stays in the host's
// list for a while, and the printer may still be announced on the host's network.
constexpr std::chrono::seconds kPatienceElsewhere{4};
// The pause between two attempts of the host to go back.
constexpr std::chrono::seconds kBetweenVisits{3};

class JoinWatch {
public:
    using Time = std::chrono::steady_clock::time_point;

    // The printer was asked at `start` to join `networkName`; its state was `before`.
    JoinWatch(std::string networkName, WifiState before, Time start, std::chrono::seconds limit);

    // Each of these returns the result of PrinterAPNetConfigEvent when the outcome is known.
    std::optional<int> Answered(const PrinterAttributes& attributes, Time now);
    // The printer does not answer, although the host is in its network.
    std::optional<int> Silent(Time now);
    // The host is no longer in the printer's network.
    std::optional<int> Gone(Time now);
    // The printer was found on a network other than its own.
    static std::optional<int> Announced();

    // Whether a host that has left the printer's network and sees it again should go back now and
    // query the printer. `elsewhere`: the host is on another network.
    bool ShouldGoBack(bool elsewhere, Time now) const;
    // An attempt to go back has ended.
    void Visited(Time now);

private:
    std::optional<int> Outcome(const PrinterAttributes& attributes) const;
    std::optional<int> UnlessOver(Time now) const;

    const std::string name;
    const WifiState stateBefore;
    const Time begin;
    const Time deadline;
    bool changed = false;
    std::optional<Time> goneSince;
    std::optional<Time> lastVisit;
};

}  // namespace Driverless
