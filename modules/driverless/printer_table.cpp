#include "printer_table.h"

#include <algorithm>
#include <array>

namespace Driverless {

namespace {

void Sooner(std::optional<PrinterTable::Time>& next, PrinterTable::Time time) {
    next = next ? std::min(*next, time) : time;
}

}  // namespace

void PrinterTable::Announced(const ServiceId& id) {
    pending.insert(id);
}

void PrinterTable::Resolved(const ServiceId& id, const Service& service, Time now) {
    pending.erase(id);
    const auto owner = owners.find(id);
    if (owner != owners.end()) {
        owner->second->services.insert_or_assign(id, service);
        return;
    }
    const auto entry = EntryFor(id, service, now);
    entry->services.emplace(id, service);
    owners.emplace(id, entry);
    if (entry->uuid.empty()) {
        entry->uuid = AnnouncedUuid(service);
    }
}

void PrinterTable::Gone(const ServiceId& id) {
    pending.erase(id);
    Detach(id);
}

void PrinterTable::AllGone() {
    pending.clear();
    owners.clear();
    entries.clear();
}

void PrinterTable::Answered(QueryId query, const std::optional<PrinterAttributes>& attributes) {
    const auto entry =
        std::find_if(entries.begin(), entries.end(), [query](const Entry& candidate) {
            return candidate.phase == Phase::Asking && candidate.query == query;
        });
    if (entry == entries.end()) {
        return;
    }
    entry->phase = attributes ? Phase::Known : Phase::Gathering;
    if (!attributes) {
        return;
    }
    entry->attributes = attributes;
    const std::string uuid = PlainUuid(attributes->uuid);
    const auto other = OtherWithUuid(entry, uuid);
    if (other != entries.end()) {
        Merge(other, entry);
    } else if (!uuid.empty()) {
        entry->uuid = uuid;
    }
}

PrinterTable::Work PrinterTable::Advance(Time now) {
    Work work;
    for (Entry& entry : entries) {
        if (entry.phase == Phase::Asking && now >= entry.deadline) {
            work.overdue.push_back(entry.query);
            entry.phase = Phase::Gathering;
        }
        if (entry.phase == Phase::Gathering) {
            AdvanceGathering(entry, now, work);
        }
        if (entry.phase == Phase::Known) {
            work.reports.push_back(DescribeEntry(entry));
            entry.phase = Phase::Reported;
        }
        if (entry.phase == Phase::Asking) {
            Sooner(work.next, entry.deadline);
        }
    }
    return work;
}

// Asks the best service that is there, waits for a better one, or makes do with the announcement.
void PrinterTable::AdvanceGathering(Entry& entry, Time now, Work& work) {
    const Time patient = WorthWaitingUntil(entry);
    if (now < patient) {
        Sooner(work.next, patient);
    } else if (!Ask(entry, now, work)) {
        entry.phase = Phase::Known;
    }
}

PrinterTable::Time PrinterTable::WorthWaitingUntil(const Entry& entry) const {
    if (NextToAsk(entry, ServiceKind::Ipp) != nullptr) {
        return entry.since;
    }
    const bool askable = NextToAsk(entry, ServiceKind::Ipps) != nullptr;
    if (!entry.asked.empty()) {
        const bool hopeful = !askable && IsAnnounced(entry, ServiceKind::Ipps);
        return hopeful ? entry.deadline : entry.since;
    }
    if (askable && !IsAnnounced(entry, ServiceKind::Ipp)) {
        return entry.since + kPatienceForPlainIpp;
    }
    return entry.since + kPatienceForIpp;
}

bool PrinterTable::Ask(Entry& entry, Time now, Work& work) {
    if (entry.asked.empty()) {
        entry.deadline = now + patience;
    }
    const ServiceId* service = NextToAsk(entry, ServiceKind::Ipp);
    if (service == nullptr) {
        service = NextToAsk(entry, ServiceKind::Ipps);
    }
    if (service == nullptr || now >= entry.deadline) {
        return false;
    }
    entry.asked.insert(*service);
    entry.source = *service;
    entry.query = ++lastQuery;
    entry.phase = Phase::Asking;
    work.queries.push_back(
        {entry.query, Describe(*service, entry.services.at(*service), {}), entry.deadline});
    return true;
}

const ServiceId* PrinterTable::NextToAsk(const Entry& entry, ServiceKind kind) const {
    const auto found =
        std::find_if(entry.services.begin(), entry.services.end(), [&](const auto& service) {
            return service.first.kind == kind && entry.asked.count(service.first) == 0;
        });
    return found == entry.services.end() ? nullptr : &found->first;
}

bool PrinterTable::IsAnnounced(const Entry& entry, ServiceKind kind) const {
    return std::any_of(pending.begin(), pending.end(), [&](const ServiceId& id) {
        return id.kind == kind && id.name == entry.name;
    });
}

// With what the printer said over IPP, the service it said it over; without, the best there is.
Printer PrinterTable::DescribeEntry(const Entry& entry) const {
    auto service = entry.services.find(entry.source);
    if (!entry.attributes || service == entry.services.end()) {
        service = std::min_element(
            entry.services.begin(), entry.services.end(),
            [](const auto& a, const auto& b) { return a.first.kind < b.first.kind; });
    }
    PrinterAttributes attributes = entry.attributes.value_or(PrinterAttributes{});
    attributes.uuid = entry.uuid;
    return Describe(service->first, service->second, attributes);
}

// The printer that the service belongs to: the one with its UUID, else the one of this name on this
// host, unless both have a UUID and they differ.
PrinterTable::Entries::iterator PrinterTable::EntryFor(const ServiceId& id, const Service& service,
                                                       Time now) {
    const std::string uuid = AnnouncedUuid(service);
    auto found = OtherWithUuid(entries.end(), uuid);
    if (found == entries.end()) {
        found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
            const bool sameUuid = uuid.empty() || entry.uuid.empty();
            return sameUuid && entry.name == id.name && entry.host == service.host;
        });
    }
    if (found == entries.end()) {
        Entry entry;
        entry.name = id.name;
        entry.host = service.host;
        entry.uuid = uuid;
        entry.since = now;
        found = entries.insert(entries.end(), std::move(entry));
    }
    return found;
}

PrinterTable::Entries::iterator PrinterTable::OtherWithUuid(Entries::iterator entry,
                                                            const std::string& uuid) {
    for (auto other = entries.begin(); !uuid.empty() && other != entries.end(); ++other) {
        if (other != entry && other->uuid == uuid) {
            return other;
        }
    }
    return entries.end();
}

// A printer goes with its last service.
void PrinterTable::Detach(const ServiceId& id) {
    const auto owner = owners.find(id);
    if (owner == owners.end()) {
        return;
    }
    const auto entry = owner->second;
    owners.erase(owner);
    entry->services.erase(id);
    entry->asked.erase(id);
    if (entry->services.empty()) {
        entries.erase(entry);
    }
}

void PrinterTable::Merge(Entries::iterator into, Entries::iterator from) {
    for (const auto& [id, service] : from->services) {
        owners[id] = into;
    }
    into->services.merge(from->services);
    into->asked.merge(from->asked);
    if (!into->attributes && into->phase != Phase::Reported) {
        into->attributes = from->attributes;
        into->source = from->source;
        into->phase = from->attributes ? Phase::Known : into->phase;
    }
    entries.erase(from);
}

}  // namespace Driverless
