// SPDX-License-Identifier: Apache-2.0

#pragma once

// Decides which announcements belong to one printer, what to ask it, and when to report it. Knows
// no network and no clock: callers report events with their time, and Advance returns the work to
// do.
//
// Anybody may announce anything. A host that announces another printer's UUID, and even answers
// with it, is another place of that printer: each place is queried, each that answers is reported,
// and none replaces another.

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "modules/driverless/discovery/fair_window.h"
#include "modules/driverless/printer/printer.h"
#include "modules/driverless/printer/service.h"

namespace Driverless {

// A printer announces all its protocols within a short time. A printer known only by a less
// informative protocol waits this long for a better one, and a printer that does not answer waits
// as long for an answer from another of its places.
constexpr std::chrono::milliseconds kPatienceForPlainIpp{250};
constexpr std::chrono::milliseconds kPatienceForIpp{1000};

// Places of one printer are reported in the order of their announcements: a place that has answered
// waits this long for the answers of earlier places.
constexpr std::chrono::milliseconds kPatienceForEarlierPlace{500};

// Limits for queries running at the same time: new ones, and all. Printers answer in milliseconds.
constexpr std::size_t kMaxYoungQuestions = 64;
constexpr std::size_t kMaxQuestions = 512;
constexpr std::chrono::milliseconds kYouthOfQuestion{100};

// How often a waiting query checks whether other scans of this process have made room.
constexpr std::chrono::milliseconds kPatienceForRoom{50};

// More places than any printer has, and more services than any place has. Beyond that, the one
// least likely to answer is dropped.
constexpr std::size_t kMaxPlaces = 256;
constexpr std::size_t kMaxServicesOfPlace = 64;

class PrinterTable {
public:
    using Time = std::chrono::steady_clock::time_point;
    using QueryId = std::uint64_t;

    // A query to send to a printer over IPP, with the deadline for its answer.
    struct Query {
        QueryId id;
        Printer printer;
        Time deadline;
    };

    struct Work {
        std::vector<Query> queries;       // to be started
        std::vector<QueryId> overdue;     // no longer waited for
        std::vector<Printer> reports;     // to be reported, each once
        std::vector<ServiceId> answered;  // what else is announced of their printers can wait
        std::vector<Printer> leftOut;     // forgotten: too many claim to be the same printer
        std::optional<Time> next;         // when to ask for work again, if nothing happens before
    };

    explicit PrinterTable(std::chrono::milliseconds patienceForAnswer)
        : patience(patienceForAnswer) {}

    void Announced(const ServiceId& id);
    void Resolved(const ServiceId& id, const Service& service, Time now);
    void Gone(const ServiceId& id);
    void AllGone();

    // What became of a question: attributes, or nothing at all; or something that is there refuses
    // to give any. That something is there may turn out when the question is overdue already.
    void Answered(QueryId query, const std::optional<PrinterAttributes>& attributes);
    void Refused(QueryId query);

    // Sets how many queries may run at the same time, up to `kMaxQuestions`.
    void LimitQuestions(std::size_t most);

    // Returns the work that is due at `now`.
    Work Advance(Time now);

    // Whether any service is announced.
    bool IsEmpty() const { return pending.empty() && rows.empty(); }

private:
    using RowId = std::uint64_t;

    // The destination of a query: kind, address, port, path.
    using Endpoint = std::tuple<ServiceKind, std::string, std::uint16_t, std::string>;

    // One endpoint to query. A service that is announced on two interfaces is queried once.
    struct Chance {
        std::set<ServiceId> services;
        std::optional<ServiceId> asked;  // the service through which it was queried
        QueryId query = 0;               // the query; it may have ended
    };

    // One place of one printer.
    struct Row {
        std::uint64_t rank;  // the order of the announcements
        std::string name;
        std::string host;
        std::string uuid;
        std::map<ServiceId, Service> services;
        std::map<Endpoint, Chance> chances;  // of the services with IPP
        std::set<Endpoint> unasked;
        std::size_t asked = 0;   // the number of queried chances
        std::set<QueryId> open;  // its waiting and running queries
        Time since;
        // Of its first query: then the place is reported without an answer.
        std::optional<Time> deadline;
        std::optional<Time> alarm;
        std::optional<Time> answeredAt;
        std::optional<PrinterAttributes> attributes;
        ServiceId source;                                   // the service that answered
        std::optional<std::pair<ServiceId, Service>> last;  // kept when all services are gone
        bool refuses = false;  // the peer answers but refuses its attributes
        bool reported = false;
        bool answerReported = false;
    };

    // The places of one UUID, grouped by state.
    struct Places {
        using Ranked = std::set<std::pair<std::uint64_t, RowId>>;

        std::set<RowId> all;
        std::set<RowId> answered;
        Ranked undecided;        // may still answer
        Ranked waiting;          // answered; wait for earlier places
        std::set<RowId> hidden;  // left out because another place has answered
        std::set<RowId> behind;  // reported after the waiting ones
    };

    // Identifies a place: UUID, address, and host name or port.
    using Spot = std::tuple<std::string, std::string, std::string, std::uint16_t>;

    // How long it may turn out of an overdue question that something is there.
    static constexpr std::chrono::milliseconds kRememberOverdue{1000};

    struct Question {
        RowId row;
        ServiceId service;
        Time queued;
        std::optional<Time> deadline;  // none while it waits for its turn
    };

    // A name on an interface; identifies a printer before its services are looked up.
    using InstanceName = std::tuple<std::string, std::string, int>;
    static InstanceName NameOf(const ServiceId& id) { return {id.name, id.domain, id.interface}; }

    RowId RowFor(const ServiceId& id, const Service& service, Time now);
    std::optional<RowId> RowAtPlace(const std::string& uuid, const Service& service,
                                    RowId except) const;
    std::optional<RowId> RowOfName(const ServiceId& id, const Service& service,
                                   const std::string& uuid) const;
    RowId NewRow(const ServiceId& id, const Service& service, Time now);
    void Join(RowId id, const ServiceId& serviceId, const Service& service, Time now);
    void SetUuid(RowId id, const std::string& uuid);
    void SetAnswer(RowId id, const ServiceId& source, const PrinterAttributes& attributes);
    void NoLongerPending(const ServiceId& id);
    void Detach(const ServiceId& id);
    void Remove(RowId id);
    void Merge(RowId into, RowId from);
    void EndQuestion(QueryId query);
    void WasSilent(QueryId overdue);
    void DropQuestion(QueryId query);
    void DropQuestions(Row& row);

    static Endpoint EndpointOf(const ServiceId& id, const Service& service);
    static std::array<Spot, 2> SpotsOf(const std::string& uuid, const Service& service);
    void Enter(RowId id, Row& row, const ServiceId& serviceId, const Service& service);
    Service Leave(RowId id, Row& row, const ServiceId& serviceId);
    void LeaveChance(Row& row, const ServiceId& serviceId, const Service& service);
    void EnterSpots(RowId id, const Row& row, const Service& service);
    void LeaveSpots(RowId id, const Row& row, const Service& service);
    void File(RowId id);
    void Unfile(RowId id);
    void Wake(Places& places, bool fewerUndecided);

    void MakeRoomForPlace(const std::string& uuid);
    void MakeRoomForService(const Row& row);
    std::pair<int, std::int64_t> WorthOfPlace(const Row& row) const;
    std::pair<int, QueryId> WorthOfService(const Row& row, const ServiceId& id) const;

    void Consider(RowId id, Time now, Work& work);
    void AskPlain(RowId id, Row& row, Time now);
    bool AskTls(RowId id, Row& row, Time now);
    void AddQuestion(RowId id, Row& row, const Endpoint& endpoint, Time now);
    const Endpoint* NextToAsk(const Row& row, ServiceKind kind) const;
    bool IsAnnounced(const Row& row, ServiceKind kind) const;
    Time WorthWaitingUntil(const Row& row) const;
    bool IsUndecided(const Row& row) const;
    bool MustWaitForEarlier(const Row& row) const;
    void ReportAnswer(RowId id, Row& row, Time now, Work& work);
    void ReportSilent(RowId id, Row& row, Work& work);
    void SetAlarm(RowId id, Row& row, std::optional<Time> time);
    void ExpireQuestions(Time now, Work& work);
    void ExpireAlarms(Time now);
    void StartQuestions(Time now, Work& work);
    Printer DescribeRow(const Row& row) const;

    const std::chrono::milliseconds patience;
    std::map<ServiceId, std::uint64_t> pending;  // announced but not yet resolved: their ranks
    std::map<std::pair<std::string, ServiceKind>, std::size_t> pendingKinds;
    std::map<InstanceName, std::size_t> pendingNames;
    std::map<InstanceName, std::set<RowId>> lingering;  // rows with only pending services left
    std::map<RowId, Row> rows;
    std::map<ServiceId, RowId> owners;
    std::map<std::string, Places> byUuid;
    std::map<Spot, std::map<RowId, std::size_t>> spots;  // the number of services by row
    std::map<std::pair<std::string, std::string>, std::set<RowId>> byNameAndHost;
    std::map<QueryId, Question> questions;
    std::map<QueryId, std::pair<Time, RowId>> expired;  // a moment ago
    std::vector<QueryId> dropped;
    std::vector<Printer> leftOut;
    std::size_t maxQuestions = kMaxQuestions;
    FairWindow<std::string, QueryId> window{{kMaxYoungQuestions, kMaxQuestions, kYouthOfQuestion}};
    std::set<RowId> changed;
    std::set<std::pair<Time, RowId>> alarms;
    std::set<std::pair<Time, QueryId>> deadlines;
    QueryId lastQuery = 0;
    RowId lastRow = 0;
    std::uint64_t lastRank = 0;
};

}  // namespace Driverless
