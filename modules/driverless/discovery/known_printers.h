// SPDX-License-Identifier: Apache-2.0

#pragma once

// The printers that the module remembers between calls, by serial number. Printers with the same
// serial number are distinguished by their UUIDs or, without them, by their announced names; in a
// record, which has neither, by their places.
//
// Anybody can announce another printer's UUID, so a place that announces it takes nothing from the
// others: a record is about what is at its own place, and only then about the latest one.
//
// Anybody can announce any number of printers. What is remembered is bounded, and the address with
// the most of it makes room first: one host's noise costs its own.

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "modules/driverless/printer/printer.h"

namespace Driverless {

constexpr std::size_t kMaxKnownPrinters = 4096;  // with one place each; fewer with more
constexpr std::size_t kMaxOfOneSerialNumber = 256;
// Where a printer is and was; the latter is for records that an application has kept.
constexpr std::size_t kMaxKnownPlaces = 16;

class PrinterMemory {
public:
    void Remember(const Printer& printer);

    // What is remembered of the printer that a record describes: the only one of its serial number,
    // or, of several, the one that is or was at its address and port. As it is there, else at its
    // latest place.
    std::optional<Printer> Find(const Printer& described);

    // Where to ask for the printer that a record describes. The first one is where the record says,
    // unless the printer has moved from there; the second one, which may be the same, is its
    // latest.
    std::pair<Printer, Printer> PlacesToAsk(const Printer& described);

    // Forgets it, but not that it is another one than those that share its serial number.
    void Forget(const Printer& described);

private:
    using Place = std::pair<std::string, std::uint16_t>;

    struct Stay {
        Place place;
        std::optional<Printer> printer;  // nothing: it has moved from there, or is forgotten
    };
    struct Entry {
        std::string uuid;
        std::string announcedName;
        std::vector<Stay> stays;  // the latest one last
        std::uint64_t turn = 0;   // of its last Remember
    };
    using Entries = std::vector<Entry>;
    using Printers = std::map<std::string, Entries>;
    struct Ticket {
        std::uint64_t turn;
        std::string serialNumber;
    };

    static Place PlaceOf(const Printer& printer);
    static bool IsSame(const Entries& entries, const Entry& entry, const Printer& printer);
    static const Stay* StayAt(const Entry& entry, const Place& place);
    static bool WasAt(const Entry& entry, const Printer& printer);
    static const Stay* Latest(const Entry& entry);
    void LeavePlaceOf(Entry& entry, const Printer& printer);
    Entry* EntryOf(const Printer& described);
    void MakeRoom(Printers::const_iterator first, Printers::const_iterator last);
    void Drop(const Ticket& ticket);

    std::mutex mutex;
    Printers printers;
    std::size_t count = 0;  // of printers and of their places
    std::uint64_t turns = 0;
};

// The process's memory of printers. Never destroyed: scans run until the process is gone.
PrinterMemory& KnownPrinters();

}  // namespace Driverless
