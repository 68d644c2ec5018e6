// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/printer_table.h"

#include <algorithm>
#include <utility>

namespace Driverless {

namespace {

void Sooner(std::optional<PrinterTable::Time>& next, std::optional<PrinterTable::Time> time) {
    if (time) {
        next = next ? std::min(*next, *time) : time;
    }
}

std::string PathOf(const Service& service) {
    const auto entry = service.txt.find("rp");
    return entry == service.txt.end() ? std::string() : entry->second;
}

// Whether a query to one service reaches the other, too.
bool IsSameEndpoint(const Service& one, const Service& other) {
    return one.address == other.address && one.port == other.port && PathOf(one) == PathOf(other);
}

// Erases the element; true when it was in the set.
template <typename Set>
bool Mark(Set& set, const typename Set::value_type& value, bool isIn) {
    if (isIn) {
        set.insert(value);
        return false;
    }
    return set.erase(value) > 0;
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

// A service that is new in a row, or has moved, is another chance for an answer.
void PrinterTable::Join(RowId id, const ServiceId& serviceId, const Service& service, Time now) {
    Row& row = rows.at(id);
    if (row.last) {
        LeaveSpots(id, row, row.last->second);
        row.last.reset();
    }
    const auto known = row.services.find(serviceId);
    if (known != row.services.end() && IsSameEndpoint(known->second, service)) {
        LeaveSpots(id, row, known->second);
        known->second = service;
        EnterSpots(id, row, service);
    } else {
        if (known != row.services.end()) {
            Leave(id, row, serviceId);
            row.refuses = false;
        }
        Enter(id, row, serviceId, service);
    }
    if (row.uuid.empty()) {
        SetUuid(id, AnnouncedUuid(service));
    }
    const bool settled = row.reported || (row.deadline && now >= *row.deadline);
    if (row.open.empty() && settled && Driverless::SpeaksIpp(serviceId.kind)) {
        row.since = now;
        row.deadline.reset();
    }
    changed.insert(id);
    File(id);
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
    spots.clear();
    leftOut.clear();
    expired.clear();
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

void PrinterTable::Refused(QueryId query) {
    const auto question = questions.find(query);
    if (question != questions.end()) {
        rows.at(question->second.row).refuses = true;
        EndQuestion(query);
    } else {
        WasSilent(query);
    }
}

void PrinterTable::WasSilent(QueryId overdue) {
    const auto question = expired.find(overdue);
    if (question == expired.end()) {
        return;
    }
    const RowId id = question->second.second;
    if (rows.count(id) > 0) {
        rows.at(id).refuses = true;
        changed.insert(id);
    }
}

void PrinterTable::LimitQuestions(std::size_t most) {
    maxQuestions = std::min(most, kMaxQuestions);
    window.LimitAll(maxQuestions);
}

void PrinterTable::SetAnswer(RowId id, const ServiceId& source,
                             const PrinterAttributes& attributes) {
    Row& row = rows.at(id);
    row.attributes = attributes;
    row.source = source;
    DropQuestions(row);
    File(id);
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
    work.leftOut = std::exchange(leftOut, {});
    Sooner(work.next, window.Next());
    if (window.IsWaiting() && maxQuestions < kMaxQuestions) {
        Sooner(work.next, now + kPatienceForRoom);
    }
    if (!alarms.empty()) {
        Sooner(work.next, alarms.begin()->first);
    }
    if (!deadlines.empty()) {
        Sooner(work.next, deadlines.begin()->first);
    }
    return work;
}

void PrinterTable::ExpireQuestions(Time now, Work& work) {
    while (!expired.empty() && expired.begin()->second.first + kRememberOverdue <= now) {
        expired.erase(expired.begin());
    }
    while (!deadlines.empty() && deadlines.begin()->first <= now) {
        const QueryId query = deadlines.begin()->second;
        work.overdue.push_back(query);
        expired.emplace(query, std::pair(now, questions.at(query).row));
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

// Queries the printer, waits for a better service, or reports the printer from its announcement.
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
            ReportSilent(id, row, work);
        }
    } else if (now < patient) {
        SetAlarm(id, row, patient);
    } else if (!AskTls(id, row, now)) {
        ReportSilent(id, row, work);
    }
}

PrinterTable::Time PrinterTable::WorthWaitingUntil(const Row& row) const {
    const bool askable = NextToAsk(row, ServiceKind::Ipps) != nullptr;
    if (row.asked == 0) {
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
    while (const Endpoint* const endpoint = NextToAsk(row, ServiceKind::Ipp)) {
        AddQuestion(id, row, *endpoint, now);
    }
}

bool PrinterTable::AskTls(RowId id, Row& row, Time now) {
    const Endpoint* const endpoint = NextToAsk(row, ServiceKind::Ipps);
    if (endpoint == nullptr || (row.deadline && now >= *row.deadline)) {
        return false;
    }
    AddQuestion(id, row, *endpoint, now);
    return true;
}

void PrinterTable::AddQuestion(RowId id, Row& row, const Endpoint& endpoint, Time now) {
    const QueryId query = ++lastQuery;
    const auto found = row.chances.find(endpoint);
    row.unasked.erase(found->first);
    Chance& chance = found->second;
    chance.asked = *chance.services.begin();
    chance.query = query;
    ++row.asked;
    row.open.insert(query);
    questions.emplace(query, Question{id, *chance.asked, now, std::nullopt});
    window.Add(row.services.at(*chance.asked).address, query);
    File(id);
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
    File(id);
}

void PrinterTable::DropQuestion(QueryId query) {
    if (questions.at(query).deadline) {
        dropped.push_back(query);
    }
    EndQuestion(query);
}

void PrinterTable::DropQuestions(Row& row) {
    while (!row.open.empty()) {
        DropQuestion(*row.open.begin());
    }
}

const PrinterTable::Endpoint* PrinterTable::NextToAsk(const Row& row, ServiceKind kind) const {
    const auto next = row.unasked.lower_bound(Endpoint{kind, {}, 0, {}});
    return next == row.unasked.end() || std::get<ServiceKind>(*next) != kind ? nullptr : &*next;
}

bool PrinterTable::IsAnnounced(const Row& row, ServiceKind kind) const {
    return pendingKinds.count({row.name, kind}) > 0;
}

// Whether the place may still be reported with an answer.
bool PrinterTable::IsUndecided(const Row& row) const {
    return row.attributes ? !row.answerReported : !row.open.empty() || !row.unasked.empty();
}

bool PrinterTable::MustWaitForEarlier(const Row& row) const {
    const auto places = byUuid.find(row.uuid);
    return places != byUuid.end() && !places->second.undecided.empty() &&
           places->second.undecided.begin()->first < row.rank;
}

void PrinterTable::ReportAnswer(RowId id, Row& row, Time now, Work& work) {
    if (row.answerReported) {
        return;
    }
    row.answeredAt = row.answeredAt.value_or(now);
    const Time patient = *row.answeredAt + kPatienceForEarlierPlace;
    if (now < patient && MustWaitForEarlier(row)) {
        SetAlarm(id, row, patient);
        File(id);
        return;
    }
    row.reported = row.answerReported = true;
    work.reports.push_back(DescribeRow(row));
    work.answered.push_back(row.source);
    File(id);
}

// Of a printer with a place that answers, the places where nothing is are not shown. Where
// something is that refuses to tell or keeps silent, that may be the printer as well, and comes
// behind.
void PrinterTable::ReportSilent(RowId id, Row& row, Work& work) {
    if (row.reported) {
        return;
    }
    const auto found = byUuid.find(row.uuid);
    if (found != byUuid.end() && !row.chances.empty()) {
        Places& places = found->second;
        if (row.refuses ? !places.waiting.empty() : !places.answered.empty()) {
            (row.refuses ? places.behind : places.hidden).insert(id);
            return;
        }
    }
    row.reported = true;
    work.reports.push_back(DescribeRow(row));
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

// Describes the service that answered, with its IPP attributes; without an answer, the best
// service.
Printer PrinterTable::DescribeRow(const Row& row) const {
    if (row.services.empty()) {
        return Describe(row.last->first, row.last->second, row.attributes);
    }
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
// this host, unless both have a UUID and they differ. Some printers say another one over IPP than
// they announce.
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
    std::optional<RowId> first;
    for (const Spot& spot : SpotsOf(uuid, service)) {
        const auto there = spots.find(spot);
        if (there == spots.end()) {
            continue;
        }
        auto row = there->second.begin();
        if (row->first == except) {
            ++row;
        }
        if (row != there->second.end() && (!first || row->first < *first)) {
            first = row->first;
        }
    }
    return first;
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
        const bool mayBe = uuid.empty() || row.uuid.empty() || uuid == AnnouncedUuid(known);
        if (mayBe && known.address == service.address) {
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
    if (row.uuid == uuid) {
        return;
    }
    if (!uuid.empty()) {
        MakeRoomForPlace(uuid);
    }
    Unfile(id);
    const auto forServices = [&](const auto& operation) {
        for (const auto& [serviceId, service] : row.services) {
            operation(service);
        }
        if (row.last) {
            operation(row.last->second);
        }
    };
    forServices([&](const Service& service) { LeaveSpots(id, row, service); });
    row.uuid = uuid;
    forServices([&](const Service& service) { EnterSpots(id, row, service); });
    File(id);
}

// A printer goes with its last service. One that has answered stays while it still announces a
// service that was not looked up yet.
void PrinterTable::Detach(const ServiceId& id) {
    const auto owner = owners.find(id);
    if (owner == owners.end()) {
        return;
    }
    const RowId rowId = owner->second;
    Row& row = rows.at(rowId);
    const Service service = Leave(rowId, row, id);
    if (!row.services.empty()) {
        changed.insert(rowId);
        File(rowId);
    } else if (row.answerReported && pendingNames.count(NameOf(id)) > 0) {
        row.last.emplace(id, service);
        EnterSpots(rowId, row, service);
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
    for (const auto& [serviceId, service] : row.services) {
        owners.erase(serviceId);
    }
    SetUuid(id, {});
    rows.erase(id);
    changed.erase(id);
}

// If one of the rows has answered, the merged row is not queried again.
void PrinterTable::Merge(RowId into, RowId from) {
    Row& left = rows.at(into);
    Row& gone = rows.at(from);
    if (gone.rank < left.rank) {
        Unfile(into);
        left.rank = gone.rank;
    }
    if (!left.attributes) {
        left.attributes = gone.attributes;
        left.source = gone.source;
        DropQuestions(left);
    }
    if (left.last) {
        LeaveSpots(into, left, left.last->second);
        left.last.reset();
    }
    while (!gone.services.empty()) {
        const ServiceId id = gone.services.begin()->first;
        const Service service = Leave(from, gone, id);
        Enter(into, left, id, service);
    }
    changed.insert(into);
    Remove(from);
    File(into);
}

PrinterTable::Endpoint PrinterTable::EndpointOf(const ServiceId& id, const Service& service) {
    return {id.kind, service.address, service.port, PathOf(service)};
}

std::array<PrinterTable::Spot, 2> PrinterTable::SpotsOf(const std::string& uuid,
                                                        const Service& service) {
    return {Spot{uuid, service.address, service.host, 0},
            Spot{uuid, service.address, {}, service.port}};
}

void PrinterTable::Enter(RowId id, Row& row, const ServiceId& serviceId, const Service& service) {
    if (row.services.size() >= kMaxServicesOfPlace) {
        MakeRoomForService(row);
    }
    row.services.emplace(serviceId, service);
    owners.insert_or_assign(serviceId, id);
    EnterSpots(id, row, service);
    if (Driverless::SpeaksIpp(serviceId.kind)) {
        const auto [chance, isNew] = row.chances.try_emplace(EndpointOf(serviceId, service));
        chance->second.services.insert(serviceId);
        if (isNew) {
            row.unasked.insert(chance->first);
        }
    }
}

Service PrinterTable::Leave(RowId id, Row& row, const ServiceId& serviceId) {
    Service service = std::move(row.services.at(serviceId));
    owners.erase(serviceId);
    LeaveSpots(id, row, service);
    if (Driverless::SpeaksIpp(serviceId.kind)) {
        LeaveChance(row, serviceId, service);
    }
    row.services.erase(serviceId);
    return service;
}

void PrinterTable::LeaveChance(Row& row, const ServiceId& serviceId, const Service& service) {
    const auto found = row.chances.find(EndpointOf(serviceId, service));
    Chance& chance = found->second;
    chance.services.erase(serviceId);
    if (chance.asked == serviceId) {
        chance.asked.reset();
        --row.asked;
        row.unasked.insert(found->first);
        if (questions.count(chance.query) > 0) {
            DropQuestion(chance.query);
        }
    }
    if (chance.services.empty()) {
        row.unasked.erase(found->first);
        row.chances.erase(found);
    }
}

void PrinterTable::EnterSpots(RowId id, const Row& row, const Service& service) {
    if (row.uuid.empty()) {
        return;
    }
    for (const Spot& spot : SpotsOf(row.uuid, service)) {
        ++spots[spot][id];
    }
}

void PrinterTable::LeaveSpots(RowId id, const Row& row, const Service& service) {
    if (row.uuid.empty()) {
        return;
    }
    for (const Spot& spot : SpotsOf(row.uuid, service)) {
        const auto there = spots.find(spot);
        CountDown(there->second, id);
        if (there->second.empty()) {
            spots.erase(there);
        }
    }
}

// Puts the row into the groups of its UUID according to its state.
void PrinterTable::File(RowId id) {
    const Row& row = rows.at(id);
    if (row.uuid.empty()) {
        return;
    }
    Places& places = byUuid[row.uuid];
    places.all.insert(id);
    Mark(places.answered, id, row.attributes.has_value());
    Mark(places.waiting, {row.rank, id}, row.answeredAt && !row.answerReported);
    Wake(places, Mark(places.undecided, {row.rank, id}, IsUndecided(row)));
}

void PrinterTable::Unfile(RowId id) {
    const Row& row = rows.at(id);
    const auto found = byUuid.find(row.uuid);
    if (found == byUuid.end()) {
        return;
    }
    Places& places = found->second;
    places.all.erase(id);
    places.answered.erase(id);
    places.waiting.erase({row.rank, id});
    places.hidden.erase(id);
    places.behind.erase(id);
    Wake(places, places.undecided.erase({row.rank, id}) > 0);
    if (places.all.empty()) {
        byUuid.erase(found);
    }
}

// Wakes the rows that no longer have to wait for another place.
void PrinterTable::Wake(Places& places, bool fewerUndecided) {
    if (fewerUndecided && !places.waiting.empty()) {
        changed.insert(places.waiting.begin()->second);
    }
    if (places.waiting.empty()) {
        changed.insert(places.behind.begin(), places.behind.end());
        places.behind.clear();
    }
    if (places.answered.empty()) {
        changed.insert(places.hidden.begin(), places.hidden.end());
        places.hidden.clear();
    }
}

void PrinterTable::MakeRoomForPlace(const std::string& uuid) {
    const auto found = byUuid.find(uuid);
    if (found == byUuid.end() || found->second.all.size() < kMaxPlaces) {
        return;
    }
    const std::set<RowId>& places = found->second.all;
    const RowId least = *std::min_element(places.begin(), places.end(), [this](RowId a, RowId b) {
        return WorthOfPlace(rows.at(a)) < WorthOfPlace(rows.at(b));
    });
    leftOut.push_back(DescribeRow(rows.at(least)));
    Remove(least);
}

void PrinterTable::MakeRoomForService(const Row& row) {
    const auto least = std::min_element(
        row.services.begin(), row.services.end(), [&](const auto& a, const auto& b) {
            return WorthOfService(row, a.first) < WorthOfService(row, b.first);
        });
    leftOut.push_back(Describe(least->first, least->second, {}));
    const ServiceId id = least->first;
    Detach(id);
}

// Places worth less are dropped first: places that have had their chance; then unanswered ones, the
// longest-running first; then places not queried yet, and then places that have answered, both the
// latest first.
std::pair<int, std::int64_t> PrinterTable::WorthOfPlace(const Row& row) const {
    const auto rank = static_cast<std::int64_t>(row.rank);
    if (row.attributes) {
        return {row.answerReported ? 3 : 4, -rank};
    }
    if (!IsUndecided(row)) {
        return {0, rank};
    }
    return row.deadline ? std::pair<int, std::int64_t>{1, row.deadline->time_since_epoch().count()}
                        : std::pair<int, std::int64_t>{2, -rank};
}

// The same for the services of a place. Services that cannot or need not be queried are worth the
// least.
std::pair<int, PrinterTable::QueryId> PrinterTable::WorthOfService(const Row& row,
                                                                   const ServiceId& id) const {
    if (row.attributes && id == row.source) {
        return {5, 0};
    }
    const auto chance = row.chances.find(EndpointOf(id, row.services.at(id)));
    if (chance == row.chances.end() || (chance->second.asked && chance->second.asked != id)) {
        return {0, 0};
    }
    if (!chance->second.asked) {
        return {id.kind == ServiceKind::Ipps ? 3 : 4, 0};
    }
    const bool isOpen = questions.count(chance->second.query) > 0;
    return isOpen ? std::pair{2, chance->second.query} : std::pair{1, QueryId{0}};
}

}  // namespace Driverless
