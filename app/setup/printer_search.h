#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "app/items/printer.h"
#include "app/program/settings.h"

namespace App {

struct SearchOutcome {
    // What the scan found of that vendor and serial number, the one reported last at the front.
    // Several may be printers that share the number, or places that one has been at.
    std::vector<Printer> printers;
    bool isOnNetwork = false;  // the vendor says that the very printer is on the network
    int vendorsResult = 0;     // the vendor's last answer, when asked
    // Why nobody looks any more; empty while a vendor does.
    std::vector<std::string> failures;
};

// Looks for a printer that was put on the network by a scan, and asks its vendor about that very
// printer, until it is there, the time is over or nobody looks any more. The vendor's word is
// enough: on the network a printer may have another serial number than before, and then no place is
// known. A vendor that cannot be asked is not needed where the scan finds the printer. Throws
// Interrupted, and Problem when no vendor can scan.
SearchOutcome SearchPrinter(const Settings& settings, const Printer& wanted,
                            std::chrono::duration<double> time);

}  // namespace App
