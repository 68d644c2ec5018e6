#pragma once

#include <chrono>

namespace Driverless {

// Something that reports until it is stopped.
class Scan {
public:
    virtual ~Scan() = default;

    // Reports on the calling thread until it is stopped. Returns the entry point's result.
    virtual int Run() = 0;

    // Makes Run return; no report begins any more. True once no report is under way, other than one
    // from which this is called; false when that takes longer than `patience`. From any thread.
    virtual bool Stop(std::chrono::milliseconds patience) = 0;
};

}  // namespace Driverless
