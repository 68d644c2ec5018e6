// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

#include "app/outcome/problem.h"

namespace App {

// Thrown when work has not ended in time. The work continues without being waited for.
class TimedOut : public Problem {
public:
    // `vendors`: the names of the vendors that have not answered; empty when not known.
    TimedOut(std::string vendors, std::chrono::duration<double> limit);

    const std::string vendors;
};

}  // namespace App
