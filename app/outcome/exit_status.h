// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace App {

// The program's exit statuses.
enum ExitStatus : int {
    kFound = 0,
    kNoneFound = 1,
    kUsage = 2,
    kCouldNotRun = 3,
};

}  // namespace App
