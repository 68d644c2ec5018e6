// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "app/outcome/exit_status.h"
#include "app/output/scan_run.h"
#include "app/program/settings.h"

namespace App {

// Looks for printers through every vendor's module and shows them as they are found. kFound when at
// least one was found.
ExitStatus Scan(const Settings& settings, const ScanOptions& options);

}  // namespace App
