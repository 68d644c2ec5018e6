#pragma once

#include "app/exit_status.h"
#include "app/scan_run.h"
#include "app/settings.h"

namespace App {

// Looks for printers in every vendor's module and shows them as they are found. kFound when there
// was one.
ExitStatus Scan(const Settings& settings, const ScanOptions& options);

}  // namespace App
