#pragma once

// What becomes of a printer that was given a network, from what it says of itself. Knows no network
// and no clock: it is told what was seen and when.

#include <chrono>
#include <optional>
#include <string>

#include "modules/driverless/printer/printer.h"

namespace Driverless {

// A state that stood before the printer was told may be left over from an earlier attempt. It
// counts when another one was seen since, or when it stands for this long.
constexpr std::chrono::seconds kOldStateLasts{3};

// A printer may have to close its own network in order to join another, and opens it again when it
// cannot. It has at least this long to do so, whatever the time limit; that it stays away proves
// nothing.
constexpr std::chrono::seconds kLeastAbsence{10};

// A host that is on another network by then gives it up only after this time: a network that was
// closed is still in the host's list for a while, and the printer may yet be announced where the
// host is.
constexpr std::chrono::seconds kPatienceElsewhere{4};
// Between two attempts of the host to go back.
constexpr std::chrono::seconds kBetweenVisits{3};

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
    // It was met on another network than its own.
    static std::optional<int> Announced();

    // Whether a host that is out of the printer's network and receives it again is to go back now,
    // to ask; `elsewhere`: it is on another one.
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
