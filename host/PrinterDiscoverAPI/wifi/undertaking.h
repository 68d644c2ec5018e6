#pragma once

#include <chrono>

namespace Host {

// A joining under way on the calling thread, which the end of the program breaks off.
class Undertaking {
public:
    Undertaking();
    ~Undertaking();
    Undertaking(const Undertaking&) = delete;
    Undertaking& operator=(const Undertaking&) = delete;

    // Throws WifiProblem when the thread's undertaking is broken off.
    static void GoOn();

    // Breaks off those that have begun, and waits until they have ended.
    static void BreakOffAll(std::chrono::milliseconds patience);
};

}  // namespace Host
