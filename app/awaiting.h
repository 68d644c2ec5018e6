#pragma once

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

}  // namespace App
