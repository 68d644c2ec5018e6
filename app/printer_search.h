#pragma once

#include <chrono>
#include <optional>

#include "app/printer.h"
#include "app/settings.h"

namespace App {

struct SearchOutcome {
    std::optional<Printer> printer;  // as the scan found it
    bool isOnNetwork = false;        // found, and its vendor says that it is on the local network
    int vendorsResult = 0;           // the vendor's last answer, when asked
};

// Looks for a printer that was reported through its access point by a scan, and asks its vendor
// about it, until both say that it is there or the time is over. A vendor that cannot be asked is
// not needed. Throws Interrupted, and Problem when no vendor can scan.
SearchOutcome SearchPrinter(const Settings& settings, const Printer& wanted,
                            std::chrono::duration<double> time);

}  // namespace App
