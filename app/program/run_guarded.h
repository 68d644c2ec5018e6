// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

#include "app/outcome/exit_status.h"

namespace App {

// Runs `run` and returns its status. Catches whatever it throws, says why the program ends, with
// --json on standard output too, and returns the status for that.
ExitStatus RunGuarded(const std::function<ExitStatus()>& run);

}  // namespace App
