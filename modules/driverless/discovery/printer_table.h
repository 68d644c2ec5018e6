#pragma once

// Which announcements belong to one printer, what to ask it, and when to report it. Knows no
// network and no clock: it is told what happened and when, and says what to do next.
//
// Anybody may announce anything. Whoever announces the UUID of another printer, and even answers
// like it, is another place of that printer: each place is asked, each that answers is reported,
// and none takes the row of another.

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

// A printer announces its protocols within moments of each other. One that is only known by a
// protocol that says less waits this long for a better one, and one that does not answer for
// another place of it that does.
constexpr std::chrono::milliseconds kPatienceForPlainIpp{250};
constexpr std::chrono::milliseconds kPatienceForIpp{1000};

// A place that answers is reported after the places of that printer that were there before it. It
// waits this long for their answers.
constexpr std::chrono::milliseconds kPatienceForEarlierPlace{500};

// Questions that are under way at once: those just asked, and all. Printers answer in milliseconds.
constexpr std::size_t kMaxYoungQuestions = 64;
constexpr std::size_t kMaxQuestions = 512;
constexpr std::chrono::milliseconds kYouthOfQuestion{100};

// How soon to look whether others in this process have made room for a question that waits.
constexpr std::chrono::milliseconds kPatienceForRoom{50};

// More places than any printer has, and more services than one place of it. When one more comes,
// the one that is the least likely to answer makes room for it.
constexpr std::size_t kMaxPlaces = 256;
constexpr std::size_t kMaxServicesOfPlace = 64;

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

    // How many questions may be under way at once, up to `kMaxQuestions`.
    void LimitQuestions(std::size_t most);

    // What is to be done at this moment.
    Work Advance(Time now);

    // Whether any service is announced.
    bool IsEmpty() const { return pending.empty() && rows.empty(); }

private:
    using RowId = std::uint64_t;

    // Where a question is sent: kind, address, port, path.
    using Endpoint = std::tuple<ServiceKind, std::string, std::uint16_t, std::string>;

    // A service that comes in by two interfaces is asked once.
    struct Chance {
        std::set<ServiceId> services;
        std::optional<ServiceId> asked;  // the one of them through which it was asked
        QueryId query = 0;               // the question; it may be over
    };

    // One place of one printer.
    struct Row {
        std::uint64_t rank;  // by the order in which they were announced
        std::string name;
        std::string host;
        std::string uuid;
        std::map<ServiceId, Service> services;
        std::map<Endpoint, Chance> chances;  // of those services that speak IPP
        std::set<Endpoint> unasked;
        std::size_t asked = 0;   // chances that were asked
        std::set<QueryId> open;  // its questions that wait or are under way
        Time since;
        std::optional<Time> deadline;  // of its first question: then it is reported as it is
        std::optional<Time> alarm;
        std::optional<Time> answeredAt;
        std::optional<PrinterAttributes> attributes;
        ServiceId source;                                   // the service that answered
        std::optional<std::pair<ServiceId, Service>> last;  // when all its services are gone
        bool refuses = false;                               // something is there, and does not tell
        bool reported = false;
        bool answerReported = false;
    };

    // The places of one UUID, in groups.
    struct Places {
        using Ranked = std::set<std::pair<std::uint64_t, RowId>>;

        std::set<RowId> all;
        std::set<RowId> answered;
        Ranked undecided;        // may still be reported with an answer
        Ranked waiting;          // have answered, and wait for those before them
        std::set<RowId> hidden;  // left out because another one has answered
        std::set<RowId> behind;  // to be reported after those that wait
    };

    // Of a place: UUID, address, and host name or port.
    using Spot = std::tuple<std::string, std::string, std::string, std::uint16_t>;

    // How long it may turn out of an overdue question that something is there.
    static constexpr std::chrono::milliseconds kRememberOverdue{1000};

    struct Question {
        RowId row;
        ServiceId service;
        Time queued;
        std::optional<Time> deadline;  // none: it waits for its turn
    };

    // What tells printers without looking at their services: a name on an interface.
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
    std::map<ServiceId, std::uint64_t> pending;  // announced, and not yet resolved: their ranks
    std::map<std::pair<std::string, ServiceKind>, std::size_t> pendingKinds;
    std::map<InstanceName, std::size_t> pendingNames;
    std::map<InstanceName, std::set<RowId>> lingering;  // their services are gone but those pending
    std::map<RowId, Row> rows;
    std::map<ServiceId, RowId> owners;
    std::map<std::string, Places> byUuid;
    std::map<Spot, std::map<RowId, std::size_t>> spots;  // how many services of which row
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
