#include "known_printers.h"

namespace Driverless {

void PrinterMemory::Remember(const Printer& printer) {
    const std::lock_guard lock(mutex);
    printers.insert_or_assign(printer.serialNumber, printer);
}

void PrinterMemory::Forget(const std::string& serialNumber) {
    const std::lock_guard lock(mutex);
    printers.erase(serialNumber);
}

std::optional<Printer> PrinterMemory::Find(const std::string& serialNumber) {
    const std::lock_guard lock(mutex);
    const auto printer = printers.find(serialNumber);
    return printer == printers.end() ? std::nullopt : std::optional(printer->second);
}

PrinterMemory& KnownPrinters() {
    static PrinterMemory& memory = *new PrinterMemory;
    return memory;
}

}  // namespace Driverless
