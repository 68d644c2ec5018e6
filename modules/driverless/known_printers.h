#pragma once

// What the module remembers of printers between calls, by serial number. Printers may share one:
// these are told apart by their UUIDs or, without them, by the names under which they are
// announced, and in a record, which has neither, by where they were.

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "printer.h"

namespace Driverless {

class PrinterMemory {
public:
    void Remember(const Printer& printer);

    // What is remembered of the printer that a record describes: the only one of its serial number,
    // or, of several, the one that is or was at its address and port.
    std::optional<Printer> Find(const Printer& described);

    // Forgets it, but not that it is another one than those that share its serial number.
    void Forget(const Printer& described);

private:
    using Place = std::pair<std::string, std::uint16_t>;

    struct Entry {
        std::string uuid;
        std::string announcedName;
        std::set<Place> places;
        std::optional<Printer> printer;  // nothing: forgotten
    };
    using Entries = std::vector<Entry>;

    static Place PlaceOf(const Printer& printer);
    static bool IsSame(const Entries& entries, const Entry& entry, const Printer& printer);
    Entry* EntryOf(const Printer& described);

    std::mutex mutex;
    std::map<std::string, Entries> printers;
};

// The one memory. Never destroyed: scans run until the process is gone.
PrinterMemory& KnownPrinters();

}  // namespace Driverless
