#pragma once

// A printer that is asked again until it answers or the time is over. Knows no network and no
// clock.

#include <chrono>
#include <optional>

namespace Driverless {

class AskedAgain {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    // A question waits for its answer for `patience`, or until the deadline where that is sooner.
    static AskedAgain Once(Time start, Duration patience);
    static AskedAgain Until(Time deadline, Time start, Duration patience);

    // The moment up to which the next question waits; nothing when there is none. A slow printer
    // gets more time with each.
    std::optional<Time> Next(Time now);

    // The printer's host is there, and refuses: nobody will listen there soon.
    void Refused();

    // It has said something that further questions will not change.
    void Answered() { isOver = true; }

    // Whether no question begins at `now` any more.
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
