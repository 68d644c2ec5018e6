// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/known_printers.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Driverless {

namespace {

// False for a printer in its own network, and for a printer known only from a record.
bool IsAnnounced(const Printer& printer) {
    return !printer.id.domain.empty();
}

}  // namespace

PrinterMemory::Place PrinterMemory::PlaceOf(const Printer& printer) {
    return {printer.address, printer.port};
}

// Compares UUIDs if both have one; else announced names, which are unique on the network. An
// unannounced printer matches the only entry of its serial number, or else the entry with its
// place.
bool PrinterMemory::IsSame(const Entries& entries, const Entry& entry, const Printer& printer) {
    if (!entry.uuid.empty() && !printer.uuid.empty()) {
        return entry.uuid == printer.uuid;
    }
    if (!entry.announcedName.empty() && IsAnnounced(printer)) {
        return entry.announcedName == printer.id.name;
    }
    return entries.size() == 1 || WasAt(entry, printer);
}

const PrinterMemory::Stay* PrinterMemory::StayAt(const Entry& entry, const Place& place) {
    const auto found = std::find_if(entry.stays.begin(), entry.stays.end(),
                                    [&](const Stay& stay) { return stay.place == place; });
    return found == entry.stays.end() ? nullptr : &*found;
}

bool PrinterMemory::WasAt(const Entry& entry, const Printer& printer) {
    return StayAt(entry, PlaceOf(printer)) != nullptr;
}

// Nothing when the printer is forgotten.
const PrinterMemory::Stay* PrinterMemory::Latest(const Entry& entry) {
    const auto found = std::find_if(entry.stays.rbegin(), entry.stays.rend(),
                                    [](const Stay& stay) { return stay.printer.has_value(); });
    return found == entry.stays.rend() ? nullptr : &*found;
}

// An announcement that is elsewhere now has moved, and so has a printer that was met in its own
// network. Another announcement may be another host's.
void PrinterMemory::LeavePlaceOf(Entry& entry, const Printer& printer) {
    for (Stay& stay : entry.stays) {
        if (stay.printer && (stay.printer->id == printer.id || !IsAnnounced(*stay.printer))) {
            stay.printer.reset();
        }
    }
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
    LeavePlaceOf(*known, printer);
    for (Entry& entry : entries) {
        count -= std::erase_if(entry.stays,
                               [&](const Stay& stay) { return stay.place == PlaceOf(printer); });
    }
    if (known->stays.size() == kMaxKnownPlaces) {
        known->stays.erase(known->stays.begin());
        --count;
    }
    known->stays.push_back({PlaceOf(printer), printer});
    ++count;
    known->turn = ++turns;
    known->uuid = printer.uuid.empty() ? known->uuid : printer.uuid;
    known->announcedName = IsAnnounced(printer) ? printer.id.name : known->announcedName;
    if (entries.size() > kMaxOfOneSerialNumber) {
        const auto found = printers.find(printer.serialNumber);
        MakeRoom(found, std::next(found));
    }
    if (count > 2 * kMaxKnownPrinters) {
        MakeRoom(printers.begin(), printers.end());
    }
}

// Drops an eighth of these serial numbers' printers at once, because it must examine all of them:
// first the oldest of the address with the most printers.
void PrinterMemory::MakeRoom(Printers::const_iterator first, Printers::const_iterator last) {
    std::map<std::string, std::vector<Ticket>> byAddress;
    std::size_t all = 0;
    for (; first != last; ++first) {
        for (const Entry& entry : first->second) {
            const std::string address =
                entry.stays.empty() ? std::string() : entry.stays.back().place.first;
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
    std::erase_if(known->second, [&](const Entry& entry) {
        const bool isDropped = entry.turn == ticket.turn;
        count -= isDropped ? 1 + entry.stays.size() : 0;
        return isDropped;
    });
    if (known->second.empty()) {
        printers.erase(known);
    }
}

std::optional<Printer> PrinterMemory::Find(const Printer& described) {
    const std::lock_guard lock(mutex);
    const Entry* const entry = EntryOf(described);
    if (entry == nullptr) {
        return std::nullopt;
    }
    const Stay* const own = StayAt(*entry, PlaceOf(described));
    const Stay* const stay = own != nullptr && own->printer ? own : Latest(*entry);
    return stay == nullptr ? std::nullopt : stay->printer;
}

// A place that was never seen, or so long ago that it made room, may be the printer's all the same.
std::pair<Printer, Printer> PrinterMemory::PlacesToAsk(const Printer& described) {
    const std::lock_guard lock(mutex);
    const Entry* const entry = EntryOf(described);
    const Stay* const latest = entry == nullptr ? nullptr : Latest(*entry);
    if (latest == nullptr) {
        return {described, described};
    }
    const Stay* const own = StayAt(*entry, PlaceOf(described));
    if (own != nullptr) {
        return {own->printer ? *own->printer : *latest->printer, *latest->printer};
    }
    Printer unseen = described;
    unseen.uuid = entry->uuid;
    return {unseen, *latest->printer};
}

void PrinterMemory::Forget(const Printer& described) {
    const std::lock_guard lock(mutex);
    if (Entry* const entry = EntryOf(described)) {
        for (Stay& stay : entry->stays) {
            stay.printer.reset();
        }
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
