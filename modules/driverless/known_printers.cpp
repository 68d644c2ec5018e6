#include "known_printers.h"

#include <algorithm>

namespace Driverless {

namespace {

// One in its own network, or that only a record tells of, is not.
bool IsAnnounced(const Printer& printer) {
    return !printer.id.domain.empty();
}

}  // namespace

PrinterMemory::Place PrinterMemory::PlaceOf(const Printer& printer) {
    return {printer.address, printer.port};
}

// The name decides where not both have a UUID: of all that are announced one only has it. A printer
// that was not announced is the only one of its serial number; where several have it, the place
// decides.
bool PrinterMemory::IsSame(const Entries& entries, const Entry& entry, const Printer& printer) {
    if (!entry.uuid.empty() && !printer.uuid.empty()) {
        return entry.uuid == printer.uuid;
    }
    if (!entry.announcedName.empty() && IsAnnounced(printer)) {
        return entry.announcedName == printer.id.name;
    }
    return entries.size() == 1 || entry.places.count(PlaceOf(printer)) > 0;
}

void PrinterMemory::Remember(const Printer& printer) {
    const std::lock_guard lock(mutex);
    Entries& entries = printers[printer.serialNumber];
    auto known = std::find_if(entries.begin(), entries.end(),
                              [&](const Entry& entry) { return IsSame(entries, entry, printer); });
    if (known == entries.end()) {
        known = entries.insert(entries.end(), Entry{});
    }
    for (Entry& entry : entries) {
        entry.places.erase(PlaceOf(printer));
    }
    known->places.insert(PlaceOf(printer));
    known->uuid = printer.uuid.empty() ? known->uuid : printer.uuid;
    known->announcedName = IsAnnounced(printer) ? printer.id.name : known->announcedName;
    known->printer = printer;
}

std::optional<Printer> PrinterMemory::Find(const Printer& described) {
    const std::lock_guard lock(mutex);
    const Entry* const entry = EntryOf(described);
    return entry == nullptr ? std::nullopt : entry->printer;
}

void PrinterMemory::Forget(const Printer& described) {
    const std::lock_guard lock(mutex);
    if (Entry* const entry = EntryOf(described)) {
        entry->printer.reset();
    }
}

PrinterMemory::Entry* PrinterMemory::EntryOf(const Printer& described) {
    const auto known = printers.find(described.serialNumber);
    if (known == printers.end()) {
        return nullptr;
    }
    Entries& entries = known->second;
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entries.size() == 1 || entry.places.count(PlaceOf(described)) > 0;
    });
    return found == entries.end() ? nullptr : &*found;
}

PrinterMemory& KnownPrinters() {
    static PrinterMemory& memory = *new PrinterMemory;
    return memory;
}

}  // namespace Driverless
