#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "app/cancellation.h"
#include "app/settings.h"
#include "app/status_line.h"

namespace App {

// Does what may take long, while the terminal says what is waited for. As AwaitInterruptibly.
template <class Result>
Result Await(const Settings& settings, const std::string& what, std::function<Result()> work) {
    StatusLine status(settings, what);
    return AwaitInterruptibly<Result>(std::move(work), [&] { status.Draw(); });
}

// Stops a vendor's scan, for which a request to end the program waits only for a moment: mostly it
// is that request which stops one. Whether the scan was stopped; when not, `stop` goes on.
inline bool StopInTime(std::function<int()> stop) {
    constexpr auto patience = std::chrono::seconds(3);
    try {
        AwaitInterruptibly(
            std::move(stop), [] {}, patience);
        return true;
    } catch (const Interrupted&) {
        return false;
    }
}

}  // namespace App
