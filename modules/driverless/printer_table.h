#pragma once

// Which announcements belong to one printer, what to ask it, and when to report it. Knows no
// network and no clock: it is told what happened and when, and says what to do next.
//
// Anybody may announce anything. Whoever announces the UUID of another printer, and even answers
// like it, is another place of that printer: each place is asked, each that answers is reported,
// and none takes the row of another.

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fair_window.h"
#include "printer.h"
#include "service.h"

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
        std::vector<ServiceId> answered;  // nothing more need be looked up of their printers
        std::optional<Time> next;         // when to ask for work again, if nothing happens before
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
    bool IsEmpty() const { return pending.empty() && rows.empty(); }

private:
    using RowId = std::uint64_t;
    // One place of one printer.
    struct Row {
        std::uint64_t rank;  // by the order in which they were announced
        std::string name;
        std::string host;
        std::string uuid;
        std::map<ServiceId, Service> services;
        std::set<ServiceId> asked;
        std::set<QueryId> open;  // its questions that wait or are under way
        Time since;
        std::optional<Time> deadline;  // of its first question: then it is reported as it is
        std::optional<Time> alarm;
        std::optional<Time> answeredAt;
        std::optional<PrinterAttributes> attributes;
        ServiceId source;                                   // the service that answered
        std::optional<std::pair<ServiceId, Service>> last;  // when all its services are gone
        bool reported = false;
        bool answerReported = false;
    };

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
    void DropQuestions(Row& row);

    void Consider(RowId id, Time now, Work& work);
    void AskPlain(RowId id, Row& row, Time now);
    bool AskTls(RowId id, Row& row, Time now);
    void AddQuestion(RowId id, Row& row, const ServiceId& service, Time now);
    const ServiceId* NextToAsk(const Row& row, ServiceKind kind) const;
    bool WasAsked(const Row& row, const ServiceId& id) const;
    bool IsAnnounced(const Row& row, ServiceKind kind) const;
    Time WorthWaitingUntil(const Row& row) const;
    bool IsUndecided(const Row& row) const;
    bool HasAnswered(const std::string& uuid) const;
    bool MustWaitForEarlier(const Row& row) const;
    void WakeWaiting(const Row& row);
    void ReportAnswer(RowId id, Row& row, Time now, Work& work);
    void ReportSilent(Row& row, Work& work);
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
    std::map<std::string, std::set<RowId>> byUuid;
    std::map<std::pair<std::string, std::string>, std::set<RowId>> byNameAndHost;
    std::map<QueryId, Question> questions;
    std::vector<QueryId> dropped;
    FairWindow<std::string, QueryId> window{{kMaxYoungQuestions, kMaxQuestions, kYouthOfQuestion}};
    std::set<RowId> changed;
    std::set<std::pair<Time, RowId>> alarms;
    std::set<std::pair<Time, QueryId>> deadlines;
    QueryId lastQuery = 0;
    RowId lastRow = 0;
    std::uint64_t lastRank = 0;
};

}  // namespace Driverless
