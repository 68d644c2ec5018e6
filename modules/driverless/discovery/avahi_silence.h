#pragma once

// Tells the user, once, that Avahi does not answer. A scan may be stopped before the module gives
// up: then too nobody has looked, which is not the same as nothing found. From any thread.

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
