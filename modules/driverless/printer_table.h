#pragma once

// Which announcements belong to one printer, what to ask it, and when to report it. Knows no
// network and no clock: it is told what happened and when, and says what to do next.

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "printer.h"
#include "service.h"

namespace Driverless {

// A printer announces its protocols within moments of each other. One that is only known by a
// protocol that says less waits this long for a better one.
constexpr std::chrono::milliseconds kPatienceForPlainIpp{250};
constexpr std::chrono::milliseconds kPatienceForIpp{1000};

class PrinterTable {
public:
    using Time = std::chrono::steady_clock::time_point;
    using QueryId = std::uint64_t;

    // A printer to be asked over IPP; to be answered within `Patience`.
    struct Query {
        QueryId id;
        Printer printer;
        Time deadline;
    };

    struct Work {
        std::vector<Query> queries;    // to be started
        std::vector<QueryId> overdue;  // no longer waited for
        std::vector<Printer> reports;  // to be reported, each once
        std::optional<Time> next;      // when to ask for work again, if nothing happens before
    };

    explicit PrinterTable(std::chrono::milliseconds patienceForAnswer)
        : patience(patienceForAnswer) {}

    void Announced(const ServiceId& id);
    void Resolved(const ServiceId& id, const Service& service, Time now);
    void Gone(const ServiceId& id);
    void AllGone();
    void Answered(QueryId query, const std::optional<PrinterAttributes>& attributes);

    // What is to be done at this moment.
    Work Advance(Time now);

    // Whether any service is announced.
    bool IsEmpty() const { return pending.empty() && entries.empty(); }

private:
    enum class Phase { Gathering, Asking, Known, Reported };

    struct Entry {
        std::string name;
        std::string host;
        std::string uuid;
        std::map<ServiceId, Service> services;
        std::set<ServiceId> asked;
        Phase phase = Phase::Gathering;
        Time since;
        Time deadline;  // of all its questions, from the first on
        QueryId query = 0;
        ServiceId source;  // the service asked last
        std::optional<PrinterAttributes> attributes;
    };
    using Entries = std::list<Entry>;

    Entries::iterator EntryFor(const ServiceId& id, const Service& service, Time now);
    Entries::iterator OtherWithUuid(Entries::iterator entry, const std::string& uuid);
    void Detach(const ServiceId& id);
    void Merge(Entries::iterator into, Entries::iterator from);
    const ServiceId* NextToAsk(const Entry& entry, ServiceKind kind) const;
    bool IsAnnounced(const Entry& entry, ServiceKind kind) const;
    Time WorthWaitingUntil(const Entry& entry) const;
    void AdvanceGathering(Entry& entry, Time now, Work& work);
    bool Ask(Entry& entry, Time now, Work& work);
    Printer DescribeEntry(const Entry& entry) const;

    const std::chrono::milliseconds patience;
    std::set<ServiceId> pending;  // announced, and not yet resolved
    Entries entries;
    std::map<ServiceId, Entries::iterator> owners;
    QueryId lastQuery = 0;
};

}  // namespace Driverless
