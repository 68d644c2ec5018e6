// SPDX-License-Identifier: Apache-2.0

#pragma once

// Reports once that Avahi does not answer. Also reports when the scan is stopped before the module
// gives up, because then "no printers found" would be wrong: Avahi never looked. Safe from any
// thread.

#include <atomic>
#include <chrono>

namespace Driverless {

class AvahiSilence {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit AvahiSilence(Time scanBegin) : begin(scanBegin) {}

    void Answered() { answered = true; }
    bool HasAnswered() const { return answered; }
    Time Begin() const { return begin; }

    void TellDuringScan(Time now);
    void TellAtStop(Time now);

    // Whether the user was told, and that still holds.
    bool IsTold() const { return told && !answered; }

    // When TellDuringScan has something to tell, if Avahi does not answer before; or had.
    Time Due() const;

private:
    void Tell(Time now, std::chrono::milliseconds silence);

    const Time begin;
    std::atomic<bool> answered = false;
    std::atomic<bool> told = false;
};

}  // namespace Driverless
