// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "app/items/printer.h"

namespace App {

struct SearchOutcome {
    // The printers found with that vendor and serial number, the last reported first. Several
    // entries may be printers that share the number, or former places of one printer.
    std::vector<Printer> printers;
    bool isOnNetwork = false;  // the vendor says that exactly this printer is on the network
    int vendorsResult = 0;     // the vendor's last result, if it was called
    // Why all vendors have stopped looking; empty while a vendor looks.
    std::vector<std::string> failures;
};

// Looks for a printer that was put on the network, by a scan and by asking its vendor about exactly
// this printer, until it is found, the time is over or all scans have failed. The vendor's answer
// is sufficient: on the network the printer may have a different serial number, and then its
// address is not known. A vendor that cannot be asked is not needed if the scan finds the printer.
// Throws Interrupted, and Problem when no vendor can scan.
SearchOutcome SearchPrinter(const Printer& wanted, std::chrono::duration<double> time);

}  // namespace App
