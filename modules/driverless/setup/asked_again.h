// SPDX-License-Identifier: Apache-2.0

#pragma once

// The schedule for querying a printer repeatedly until it answers or the time is over. Knows no
// network and no clock.

#include <chrono>
#include <optional>

namespace Driverless {

class AskedAgain {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    // A query waits for its answer for `patience`, but at most until the deadline.
    static AskedAgain Once(Time start, Duration patience);
    static AskedAgain Until(Time deadline, Time start, Duration patience);

    // The time until which the next query waits; nothing when there is no further query. Each query
    // gives a slow printer more time.
    std::optional<Time> Next(Time now);

    // The host refused the connection: no printer will listen there soon.
    void Refused();

    // The printer gave an answer that further queries will not change.
    void Answered() { isOver = true; }

    // Whether no query begins any more at `now`.
    bool IsOver(Time now) const { return isOver || now >= deadline; }

private:
    AskedAgain(Time beginning, Time end, Duration least)
        : start(beginning), deadline(end), patience(least) {}

    Time start;
    Time deadline;
    Duration patience;
    bool isOnce = false;
    bool isOver = false;
};

}  // namespace Driverless
