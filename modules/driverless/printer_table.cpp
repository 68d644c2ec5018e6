#include "printer_table.h"

#include <algorithm>
#include <utility>

namespace Driverless {

namespace {

void Sooner(std::optional<PrinterTable::Time>& next, std::optional<PrinterTable::Time> time) {
    if (time) {
        next = next ? std::min(*next, *time) : time;
    }
}

bool IsSamePlace(const Service& one, const Service& other) {
    return one.address == other.address && (one.host == other.host || one.port == other.port);
}

// Whether a question to the one is a question to the other.
bool IsSameEndpoint(const Service& one, const Service& other) {
    const auto path = [](const Service& service) {
        const auto entry = service.txt.find("rp");
        return entry == service.txt.end() ? std::string() : entry->second;
    };
    return one.address == other.address && one.port == other.port && path(one) == path(other);
}

bool SpeaksIpp(const std::map<ServiceId, Service>& services) {
    return std::any_of(services.begin(), services.end(), [](const auto& service) {
        return Driverless::SpeaksIpp(service.first.kind);
    });
}

template <typename Key>
void CountDown(std::map<Key, std::size_t>& counts, const Key& key) {
    const auto count = counts.find(key);
    if (count != counts.end() && --count->second == 0) {
        counts.erase(count);
    }
}

template <typename Key, typename Value>
void EraseFrom(std::map<Key, std::set<Value>>& sets, const Key& key, const Value& value) {
    const auto set = sets.find(key);
    if (set != sets.end() && set->second.erase(value) > 0 && set->second.empty()) {
        sets.erase(set);
    }
}

}  // namespace

void PrinterTable::Announced(const ServiceId& id) {
    if (pending.emplace(id, lastRank + 1).second) {
        ++lastRank;
        ++pendingKinds[{id.name, id.kind}];
        ++pendingNames[NameOf(id)];
    }
}

void PrinterTable::Resolved(const ServiceId& id, const Service& service, Time now) {
    const auto owner = owners.find(id);
    const RowId row = owner == owners.end() ? RowFor(id, service, now) : owner->second;
    Join(row, id, service, now);
    NoLongerPending(id);
}

// A service that is new in a row, or elsewhere than before, is another chance for an answer.
void PrinterTable::Join(RowId id, const ServiceId& serviceId, const Service& service, Time now) {
    Row& row = rows.at(id);
    const auto known = row.services.find(serviceId);
    if (known != row.services.end() && !IsSameEndpoint(known->second, service)) {
        row.asked.erase(serviceId);
    }
    row.services.insert_or_assign(serviceId, service);
    row.last.reset();
    owners.insert_or_assign(serviceId, id);
    if (row.uuid.empty()) {
        SetUuid(id, AnnouncedUuid(service));
    }
    const bool settled = row.reported || (row.deadline && now >= *row.deadline);
    if (row.open.empty() && settled && Driverless::SpeaksIpp(serviceId.kind)) {
        row.since = now;
        row.deadline.reset();
    }
    changed.insert(id);
}

void PrinterTable::Gone(const ServiceId& id) {
    Detach(id);
    NoLongerPending(id);
}

void PrinterTable::AllGone() {
    for (const auto& [query, question] : questions) {
        dropped.push_back(query);
        window.Remove(query);
    }
    questions.clear();
    deadlines.clear();
    pending.clear();
    pendingKinds.clear();
    pendingNames.clear();
    lingering.clear();
    owners.clear();
    rows.clear();
    byUuid.clear();
    byNameAndHost.clear();
    changed.clear();
    alarms.clear();
}

void PrinterTable::NoLongerPending(const ServiceId& id) {
    if (pending.erase(id) == 0) {
        return;
    }
    CountDown(pendingKinds, {id.name, id.kind});
    CountDown(pendingNames, NameOf(id));
    const auto left = lingering.find(NameOf(id));
    if (left == lingering.end() || pendingNames.count(NameOf(id)) > 0) {
        return;
    }
    const std::set<RowId> ids = std::move(left->second);
    lingering.erase(left);
    for (const RowId row : ids) {
        if (rows.count(row) > 0 && rows.at(row).services.empty()) {
            Remove(row);
        }
    }
}

void PrinterTable::Answered(QueryId query, const std::optional<PrinterAttributes>& attributes) {
    const auto question = questions.find(query);
    if (question == questions.end()) {
        return;
    }
    const auto [row, service] = std::pair(question->second.row, question->second.service);
    EndQuestion(query);
    if (attributes) {
        SetAnswer(row, service, *attributes);
    }
}

void PrinterTable::SetAnswer(RowId id, const ServiceId& source,
                             const PrinterAttributes& attributes) {
    Row& row = rows.at(id);
    row.attributes = attributes;
    row.source = source;
    DropQuestions(row);
    const std::string uuid = PlainUuid(attributes.uuid);
    if (uuid.empty()) {
        return;
    }
    SetUuid(id, uuid);
    const auto service = row.services.find(source);
    const auto same =
        service == row.services.end() ? std::nullopt : RowAtPlace(uuid, service->second, id);
    if (same) {
        Merge(*same, id);
    }
}

PrinterTable::Work PrinterTable::Advance(Time now) {
    Work work;
    work.overdue = std::exchange(dropped, {});
    ExpireQuestions(now, work);
    ExpireAlarms(now);
    while (!changed.empty()) {
        const RowId id = *changed.begin();
        changed.erase(changed.begin());
        Consider(id, now, work);
    }
    StartQuestions(now, work);
    work.overdue.insert(work.overdue.end(), dropped.begin(), dropped.end());
    dropped.clear();
    Sooner(work.next, window.Next());
    if (!alarms.empty()) {
        Sooner(work.next, alarms.begin()->first);
    }
    if (!deadlines.empty()) {
        Sooner(work.next, deadlines.begin()->first);
    }
    return work;
}

void PrinterTable::ExpireQuestions(Time now, Work& work) {
    while (!deadlines.empty() && deadlines.begin()->first <= now) {
        const QueryId query = deadlines.begin()->second;
        work.overdue.push_back(query);
        EndQuestion(query);
    }
}

void PrinterTable::ExpireAlarms(Time now) {
    while (!alarms.empty() && alarms.begin()->first <= now) {
        const RowId id = alarms.begin()->second;
        SetAlarm(id, rows.at(id), std::nullopt);
        changed.insert(id);
    }
}

void PrinterTable::StartQuestions(Time now, Work& work) {
    while (const auto query = window.Take(now)) {
        Question& question = questions.at(*query);
        Row& row = rows.at(question.row);
        const bool follows = row.deadline && question.service.kind == ServiceKind::Ipps;
        const Time deadline = follows ? *row.deadline + (now - question.queued) : now + patience;
        if (follows || !row.deadline) {
            row.deadline = deadline;
        }
        question.deadline = deadline;
        deadlines.emplace(deadline, *query);
        work.queries.push_back(
            {*query, Describe(question.service, row.services.at(question.service), {}), deadline});
    }
}

// Asks what can be asked, waits for something better, or makes do with the announcement.
void PrinterTable::Consider(RowId id, Time now, Work& work) {
    const auto found = rows.find(id);
    if (found == rows.end() || found->second.services.empty()) {
        return;
    }
    Row& row = found->second;
    SetAlarm(id, row, std::nullopt);
    if (row.attributes) {
        ReportAnswer(id, row, now, work);
        return;
    }
    AskPlain(id, row, now);
    const Time patient = WorthWaitingUntil(row);
    if (!row.open.empty()) {
        if (row.deadline && now >= *row.deadline) {
            ReportSilent(row, work);
        }
    } else if (now < patient) {
        SetAlarm(id, row, patient);
    } else if (!AskTls(id, row, now)) {
        ReportSilent(row, work);
    }
    if (!IsUndecided(row)) {
        WakeWaiting(row);
    }
}

PrinterTable::Time PrinterTable::WorthWaitingUntil(const Row& row) const {
    const bool askable = NextToAsk(row, ServiceKind::Ipps) != nullptr;
    if (row.asked.empty()) {
        const bool alone = askable && !IsAnnounced(row, ServiceKind::Ipp);
        return row.since + (alone ? kPatienceForPlainIpp : kPatienceForIpp);
    }
    if (askable) {
        return row.since;
    }
    const Time forPlaces = row.since + kPatienceForIpp;
    const bool hopeful = IsAnnounced(row, ServiceKind::Ipps) && row.deadline;
    return hopeful ? std::max(*row.deadline, forPlaces) : forPlaces;
}

void PrinterTable::AskPlain(RowId id, Row& row, Time now) {
    while (const ServiceId* const service = NextToAsk(row, ServiceKind::Ipp)) {
        AddQuestion(id, row, *service, now);
    }
}

bool PrinterTable::AskTls(RowId id, Row& row, Time now) {
    const ServiceId* const service = NextToAsk(row, ServiceKind::Ipps);
    if (service == nullptr || (row.deadline && now >= *row.deadline)) {
        return false;
    }
    AddQuestion(id, row, *service, now);
    return true;
}

void PrinterTable::AddQuestion(RowId id, Row& row, const ServiceId& service, Time now) {
    const QueryId query = ++lastQuery;
    row.asked.insert(service);
    row.open.insert(query);
    questions.emplace(query, Question{id, service, now, std::nullopt});
    window.Add(row.services.at(service).address, query);
}

void PrinterTable::EndQuestion(QueryId query) {
    const auto question = questions.find(query);
    if (question->second.deadline) {
        deadlines.erase({*question->second.deadline, query});
    }
    const RowId id = question->second.row;
    questions.erase(question);
    window.Remove(query);
    rows.at(id).open.erase(query);
    changed.insert(id);
}

void PrinterTable::DropQuestions(Row& row) {
    while (!row.open.empty()) {
        const QueryId query = *row.open.begin();
        if (questions.at(query).deadline) {
            dropped.push_back(query);
        }
        EndQuestion(query);
    }
}

const ServiceId* PrinterTable::NextToAsk(const Row& row, ServiceKind kind) const {
    const auto found =
        std::find_if(row.services.begin(), row.services.end(), [&](const auto& service) {
            return service.first.kind == kind && !WasAsked(row, service.first);
        });
    return found == row.services.end() ? nullptr : &found->first;
}

// A service that comes in by two interfaces is asked once.
bool PrinterTable::WasAsked(const Row& row, const ServiceId& id) const {
    const Service& service = row.services.at(id);
    return std::any_of(row.asked.begin(), row.asked.end(), [&](const ServiceId& asked) {
        const auto other = row.services.find(asked);
        return asked == id || (asked.kind == id.kind && other != row.services.end() &&
                               IsSameEndpoint(other->second, service));
    });
}

bool PrinterTable::IsAnnounced(const Row& row, ServiceKind kind) const {
    return pendingKinds.count({row.name, kind}) > 0;
}

// Whether it may still be reported with an answer.
bool PrinterTable::IsUndecided(const Row& row) const {
    return row.attributes ? !row.answerReported
                          : !row.open.empty() || NextToAsk(row, ServiceKind::Ipps) != nullptr;
}

bool PrinterTable::HasAnswered(const std::string& uuid) const {
    const auto places = byUuid.find(uuid);
    return places != byUuid.end() &&
           std::any_of(places->second.begin(), places->second.end(),
                       [this](RowId id) { return rows.at(id).attributes.has_value(); });
}

bool PrinterTable::MustWaitForEarlier(const Row& row) const {
    const auto places = byUuid.find(row.uuid);
    return places != byUuid.end() &&
           std::any_of(places->second.begin(), places->second.end(), [&](RowId id) {
               const Row& other = rows.at(id);
               return other.rank < row.rank && IsUndecided(other);
           });
}

// The next of the places that have answered and wait for the earlier ones.
void PrinterTable::WakeWaiting(const Row& row) {
    const auto places = byUuid.find(row.uuid);
    if (places == byUuid.end()) {
        return;
    }
    std::optional<RowId> next;
    for (const RowId id : places->second) {
        const Row& other = rows.at(id);
        const bool waits = other.answeredAt && !other.answerReported && &other != &row;
        if (waits && (!next || other.rank < rows.at(*next).rank)) {
            next = id;
        }
    }
    if (next) {
        changed.insert(*next);
    }
}

void PrinterTable::ReportAnswer(RowId id, Row& row, Time now, Work& work) {
    if (row.answerReported) {
        return;
    }
    row.answeredAt = row.answeredAt.value_or(now);
    const Time patient = *row.answeredAt + kPatienceForEarlierPlace;
    if (now < patient && MustWaitForEarlier(row)) {
        SetAlarm(id, row, patient);
        return;
    }
    row.reported = row.answerReported = true;
    work.reports.push_back(DescribeRow(row));
    work.answered.push_back(row.source);
    WakeWaiting(row);
}

// Of a printer with a place that answers, the places that do not are not shown.
void PrinterTable::ReportSilent(Row& row, Work& work) {
    const bool hidden = SpeaksIpp(row.services) && HasAnswered(row.uuid);
    if (!row.reported && !hidden) {
        row.reported = true;
        work.reports.push_back(DescribeRow(row));
    }
}

void PrinterTable::SetAlarm(RowId id, Row& row, std::optional<Time> time) {
    if (row.alarm) {
        alarms.erase({*row.alarm, id});
    }
    row.alarm = time;
    if (time) {
        alarms.emplace(*time, id);
    }
}

// With what the printer said over IPP, the service it said it over; without, the best there is.
Printer PrinterTable::DescribeRow(const Row& row) const {
    auto service = row.services.find(row.source);
    if (!row.attributes || service == row.services.end()) {
        service = std::min_element(
            row.services.begin(), row.services.end(),
            [](const auto& a, const auto& b) { return a.first.kind < b.first.kind; });
    }
    PrinterAttributes attributes = row.attributes.value_or(PrinterAttributes{});
    attributes.uuid = row.uuid;
    return Describe(service->first, service->second, attributes);
}

// The row that the service belongs to: that of its UUID at this place, else the one of this name on
// this host, unless both have a UUID and they differ.
PrinterTable::RowId PrinterTable::RowFor(const ServiceId& id, const Service& service, Time now) {
    const std::string uuid = AnnouncedUuid(service);
    if (const auto known = RowAtPlace(uuid, service, 0)) {
        return *known;
    }
    const auto named = RowOfName(id, service, uuid);
    return named ? *named : NewRow(id, service, now);
}

std::optional<PrinterTable::RowId> PrinterTable::RowAtPlace(const std::string& uuid,
                                                            const Service& service,
                                                            RowId except) const {
    const auto places = byUuid.find(uuid);
    if (places == byUuid.end()) {
        return std::nullopt;
    }
    for (const RowId id : places->second) {
        const Row& row = rows.at(id);
        const bool here =
            std::any_of(row.services.begin(), row.services.end(),
                        [&](const auto& known) { return IsSamePlace(known.second, service); });
        if (id != except && (here || (row.last && IsSamePlace(row.last->second, service)))) {
            return id;
        }
    }
    return std::nullopt;
}

std::optional<PrinterTable::RowId> PrinterTable::RowOfName(const ServiceId& id,
                                                           const Service& service,
                                                           const std::string& uuid) const {
    const auto named = byNameAndHost.find({id.name, service.host});
    if (named == byNameAndHost.end()) {
        return std::nullopt;
    }
    for (const RowId candidate : named->second) {
        const Row& row = rows.at(candidate);
        const Service& known = row.last ? row.last->second : row.services.begin()->second;
        if ((uuid.empty() || row.uuid.empty()) && known.address == service.address) {
            return candidate;
        }
    }
    return std::nullopt;
}

PrinterTable::RowId PrinterTable::NewRow(const ServiceId& id, const Service& service, Time now) {
    const auto announced = pending.find(id);
    Row row;
    row.rank = announced == pending.end() ? ++lastRank : announced->second;
    row.name = id.name;
    row.host = service.host;
    row.since = now;
    byNameAndHost[{row.name, row.host}].insert(++lastRow);
    rows.emplace(lastRow, std::move(row));
    return lastRow;
}

void PrinterTable::SetUuid(RowId id, const std::string& uuid) {
    Row& row = rows.at(id);
    EraseFrom(byUuid, row.uuid, id);
    row.uuid = uuid;
    if (!uuid.empty()) {
        byUuid[uuid].insert(id);
    }
}

// A printer goes with its last service. One that has answered stays while it still announces a
// service that was not looked up, for want of need.
void PrinterTable::Detach(const ServiceId& id) {
    const auto owner = owners.find(id);
    if (owner == owners.end()) {
        return;
    }
    const RowId rowId = owner->second;
    owners.erase(owner);
    Row& row = rows.at(rowId);
    const auto service = row.services.extract(id);
    row.asked.erase(id);
    std::vector<QueryId> moot;
    for (const QueryId query : row.open) {
        if (questions.at(query).service == id) {
            moot.push_back(query);
        }
    }
    for (const QueryId query : moot) {
        dropped.push_back(query);
        EndQuestion(query);
    }
    if (!row.services.empty()) {
        changed.insert(rowId);
    } else if (row.answerReported && pendingNames.count(NameOf(id)) > 0) {
        row.last.emplace(id, service.mapped());
        lingering[NameOf(id)].insert(rowId);
    } else {
        Remove(rowId);
    }
}

void PrinterTable::Remove(RowId id) {
    Row& row = rows.at(id);
    DropQuestions(row);
    SetAlarm(id, row, std::nullopt);
    EraseFrom(byNameAndHost, {row.name, row.host}, id);
    const std::string uuid = row.uuid;
    SetUuid(id, {});
    rows.erase(id);
    changed.erase(id);
    // Places that were hidden behind this one, or waited for it.
    const auto places = byUuid.find(uuid);
    if (places != byUuid.end()) {
        changed.insert(places->second.begin(), places->second.end());
    }
}

void PrinterTable::Merge(RowId into, RowId from) {
    Row& left = rows.at(into);
    Row& gone = rows.at(from);
    for (const auto& [id, service] : gone.services) {
        owners[id] = into;
    }
    left.services.merge(gone.services);
    left.asked.merge(gone.asked);
    left.rank = std::min(left.rank, gone.rank);
    if (!left.attributes) {
        left.attributes = gone.attributes;
        left.source = gone.source;
        DropQuestions(left);
    }
    left.last.reset();
    changed.insert(into);
    Remove(from);
}

}  // namespace Driverless
