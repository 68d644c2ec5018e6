// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <exception>
#include <string>
#include <system_error>

#include "modules/driverless/common/diagnostics.h"

namespace Driverless {

// Reports that memory or threads have run out. Does nothing if the report itself fails.
inline void ReportExhausted(const std::exception& exception) noexcept {
    try {
        const auto* const system = dynamic_cast<const std::system_error*>(&exception);
        const bool isThread =
            system != nullptr && system->code() == std::errc::resource_unavailable_try_again;
        ReportProblem(std::string("out of resources: ") +
                      (isThread ? "no further thread can be started" : exception.what()));
    } catch (const std::exception&) {
        return;
    }
}

// Calls `function`. Returns `failed` if it throws (out of memory, no further thread), because no
// entry point may throw.
template <typename Function>
int Guarded(int failed, Function function) {
    try {
        return function();
    } catch (const std::exception& exception) {
        ReportExhausted(exception);
        return failed;
    }
}

}  // namespace Driverless
