#pragma once

#include <chrono>
#include <string>

#include "app/outcome/problem.h"

namespace App {

// Thrown when work has not ended in its time; it goes on, and nobody waits for it any more.
class TimedOut : public Problem {
public:
    // `vendors` are the names of those that are waited for; empty when none is known.
    TimedOut(std::string vendors, std::chrono::duration<double> limit);

    const std::string vendors;
};

}  // namespace App
