#pragma once

// What the module remembers of printers between calls, by serial number.

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "printer.h"

namespace Driverless {

class PrinterMemory {
public:
    void Remember(const Printer& printer);
    void Forget(const std::string& serialNumber);
    std::optional<Printer> Find(const std::string& serialNumber);

private:
    std::mutex mutex;
    std::map<std::string, Printer> printers;
};

// The one memory. Never destroyed: scans run until the process is gone.
PrinterMemory& KnownPrinters();

}  // namespace Driverless
