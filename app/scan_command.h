#pragma once

#include <chrono>

#include "app/exit_status.h"
#include "app/settings.h"

namespace App {

struct ScanOptions {
    std::chrono::duration<double> time{5};
    bool watch = false;  // until interrupted, whatever `time` says
};

// Looks for printers in every vendor's module and shows them as they are found. kFound when there
// was one.
ExitStatus Scan(const Settings& settings, const ScanOptions& options);

}  // namespace App
