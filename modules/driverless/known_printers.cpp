#include "known_printers.h"

#include <algorithm>
#include <iterator>
#include <utility>

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
    return entries.size() == 1 || WasAt(entry, printer);
}

bool PrinterMemory::WasAt(const Entry& entry, const Printer& printer) {
    return std::find(entry.places.begin(), entry.places.end(), PlaceOf(printer)) !=
           entry.places.end();
}

void PrinterMemory::Remember(const Printer& printer) {
    const std::lock_guard lock(mutex);
    Entries& entries = printers[printer.serialNumber];
    auto known = std::find_if(entries.begin(), entries.end(),
                              [&](const Entry& entry) { return IsSame(entries, entry, printer); });
    if (known == entries.end()) {
        known = entries.insert(entries.end(), Entry{});
        ++count;
    }
    for (Entry& entry : entries) {
        std::erase(entry.places, PlaceOf(printer));
    }
    if (known->places.size() == kMaxKnownPlaces) {
        known->places.erase(known->places.begin());
    }
    known->places.push_back(PlaceOf(printer));
    known->turn = ++turns;
    known->uuid = printer.uuid.empty() ? known->uuid : printer.uuid;
    known->announcedName = IsAnnounced(printer) ? printer.id.name : known->announcedName;
    known->printer = printer;
    if (entries.size() > kMaxOfOneSerialNumber) {
        const auto found = printers.find(printer.serialNumber);
        MakeRoom(found, std::next(found));
    }
    if (count > kMaxKnownPrinters) {
        MakeRoom(printers.begin(), printers.end());
    }
}

// An eighth of these serial numbers' printers goes, for it takes a look at all of them: of the
// address with the most, the oldest.
void PrinterMemory::MakeRoom(Printers::const_iterator first, Printers::const_iterator last) {
    std::map<std::string, std::vector<Ticket>> byAddress;
    std::size_t all = 0;
    for (; first != last; ++first) {
        for (const Entry& entry : first->second) {
            const std::string address =
                entry.places.empty() ? std::string() : entry.places.back().first;
            byAddress[address].push_back({entry.turn, first->first});
            ++all;
        }
    }
    for (auto& [address, tickets] : byAddress) {
        std::sort(tickets.begin(), tickets.end(),
                  [](const Ticket& a, const Ticket& b) { return a.turn > b.turn; });
    }
    for (std::size_t left = all / 8; left > 0; --left) {
        auto& most =
            std::max_element(byAddress.begin(), byAddress.end(), [](const auto& a, const auto& b) {
                return a.second.size() != b.second.size()
                           ? a.second.size() < b.second.size()
                           : !a.second.empty() && a.second.back().turn > b.second.back().turn;
            })->second;
        Drop(most.back());
        most.pop_back();
    }
}

void PrinterMemory::Drop(const Ticket& ticket) {
    const auto known = printers.find(ticket.serialNumber);
    count -=
        std::erase_if(known->second, [&](const Entry& entry) { return entry.turn == ticket.turn; });
    if (known->second.empty()) {
        printers.erase(known);
    }
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
        return entries.size() == 1 || WasAt(entry, described);
    });
    return found == entries.end() ? nullptr : &*found;
}

PrinterMemory& KnownPrinters() {
    static PrinterMemory& memory = *new PrinterMemory;
    return memory;
}

}  // namespace Driverless
