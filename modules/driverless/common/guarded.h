#pragma once

#include <exception>
#include <string>
#include <system_error>

#include "modules/driverless/common/diagnostics.h"

namespace Driverless {

// Says that there is no memory, or no further thread; as far as that itself takes none.
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

// Calls `function`; what it throws (out of memory, no further thread) becomes `failed`: no entry
// point lets an exception out.
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
