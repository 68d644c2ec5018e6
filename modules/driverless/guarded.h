#pragma once

#include <exception>
#include <string>

#include "diagnostics.h"

namespace Driverless {

// Calls `function`; what it throws (out of memory, no further thread) becomes `failed`: no entry
// point lets an exception out.
template <typename Function>
int Guarded(int failed, Function function) {
    try {
        return function();
    } catch (const std::exception& exception) {
        ReportProblem(std::string("out of resources: ") + exception.what());
        return failed;
    }
}

}  // namespace Driverless
