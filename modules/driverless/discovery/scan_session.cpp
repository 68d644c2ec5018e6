// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/discovery/scan_session.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <utility>
#include <variant>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/avahi_hang.h"
#include "modules/driverless/discovery/dnssd_browser.h"
#include "modules/driverless/discovery/host_network.h"
#include "modules/driverless/discovery/known_printers.h"
#include "modules/driverless/discovery/printer_table.h"
#include "modules/driverless/discovery/query_pool.h"
#include "modules/driverless/ipp/ipp_query.h"

namespace Driverless {

namespace {

// Avahi and D-Bus run on this host: without an answer within this time they do not work.
constexpr std::chrono::milliseconds kPatienceForAvahi{3000};

// The limit for lines about left-out printers, so that a hostile host cannot fill the disk.
constexpr int kMaxLinesOfLeftOut = 100;

struct Answer {
    PrinterTable::QueryId query;
    IppAnswer said;
};
using Message = std::variant<DnssdEvent, Answer>;

int Fail(int result, const std::string& message) {
    ReportProblem(message);
    return result;
}

std::string Summary(const Printer& printer) {
    return printer.makeAndModel + ", serial number " + printer.serialNumber + ", at " +
           printer.address + ":" + std::to_string(printer.port);
}

}  // namespace

// The messages of other threads to the thread in Run. Outlives the session while an abandoned
// thread uses it.
class ScanSession::Inbox {
public:
    // A message without memory ends the scan.
    void Put(Message message) {
        const std::lock_guard lock(mutex);
        if (closed) {
            return;
        }
        try {
            messages.push_back(std::move(message));
        } catch (const std::bad_alloc&) {
            exhausted = true;
        }
        changed.notify_all();
    }

    // The next message; nothing when none arrived by `until`, or the inbox was closed.
    std::optional<Message> Take(std::optional<Clock::time_point> until) {
        std::unique_lock lock(mutex);
        const auto due = [this] { return closed || exhausted || !messages.empty(); };
        if (until) {
            changed.wait_until(lock, *until, due);
        } else {
            changed.wait(lock, due);
        }
        if (!closed && exhausted) {
            return DnssdEvent{DnssdEvent::Kind::Failed, {}, {}, kNoBrowsing, kOutOfMemory};
        }
        if (closed || messages.empty()) {
            return std::nullopt;
        }
        Message message = std::move(messages.front());
        messages.pop_front();
        return message;
    }

    void Close() {
        const std::lock_guard lock(mutex);
        closed = true;
        messages.clear();
        changed.notify_all();
    }

    bool IsClosed() {
        const std::lock_guard lock(mutex);
        return closed;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Message> messages;
    bool closed = false;
    bool exhausted = false;
};

namespace {

// The course of one scan: passes events to the table, and carries out the table's work.
class Course {
public:
    explicit Course(AvahiSilence& avahiSilence) : silence(avahiSilence) {}

    // The result that ends the scan, or nothing.
    std::optional<int> Take(const Message& message, Clock::time_point now) {
        if (const auto* answer = std::get_if<Answer>(&message)) {
            Take(*answer);
            return std::nullopt;
        }
        return Take(std::get<DnssdEvent>(message), now);
    }

    // The result if Avahi has not answered in time, or nothing.
    std::optional<int> Overdue(Clock::time_point now) {
        silence.TellDuringScan(now);
        const bool overdue = !silence.HasAnswered() && now >= silence.Begin() + kPatienceForAvahi;
        return overdue ? std::optional(kNoBrowsing) : std::nullopt;
    }

    // The result for an Avahi that has stopped answering since then, or nothing. Before it has
    // answered at all, Overdue tells.
    std::optional<int> Hanging(std::optional<Clock::time_point> since, Clock::time_point now) {
        if (!silence.HasAnswered()) {
            return std::nullopt;
        }
        switch (hang.Look(since, now)) {
            case AvahiHang::Finding::Hangs:
                ReportProblem("Avahi has stopped answering: printers that come are not found");
                break;
            case AvahiHang::Finding::Recovers:
                ReportProblem("Avahi answers again");
                break;
            case AvahiHang::Finding::IsOver:
                return Fail(kNoBrowsing, "Avahi still does not answer: the scan ends");
            case AvahiHang::Finding::None:
                break;
        }
        return std::nullopt;
    }

    // Avahi stopped answering, and has not answered since.
    bool IsHanging() const { return hang.IsTold(); }

    // Something is there at the place of a question that was overdue just now.
    void WasSilent(PrinterTable::QueryId query) { table.Refused(query); }

    // With room for so many questions under way.
    PrinterTable::Work Advance(Clock::time_point now, std::size_t room) {
        table.LimitQuestions(room);
        PrinterTable::Work work = table.Advance(now);
        if (!silence.HasAnswered()) {
            const auto due =
                silence.Due() > now ? silence.Due() : silence.Begin() + kPatienceForAvahi;
            work.next = std::min(work.next.value_or(due), due);
        }
        work.next = std::min(work.next.value_or(now + kLookForHangEvery), now + kLookForHangEvery);
        return work;
    }

private:
    void Take(const Answer& answer) {
        switch (answer.said.kind) {
            case IppAnswer::Kind::Granted:
                table.Answered(answer.query, answer.said.attributes);
                break;
            case IppAnswer::Kind::Denied:
            case IppAnswer::Kind::NoPrinter:
                table.Refused(answer.query);
                break;
            case IppAnswer::Kind::NoAnswer:
                if (answer.said.connected) {
                    table.Refused(answer.query);
                } else {
                    table.Answered(answer.query, std::nullopt);
                }
                break;
        }
    }

    std::optional<int> Take(const DnssdEvent& event, Clock::time_point now) {
        switch (event.kind) {
            case DnssdEvent::Kind::Ready:
                silence.Answered();
                break;
            case DnssdEvent::Kind::Announced:
                table.Announced(event.id);
                break;
            case DnssdEvent::Kind::Resolved:
                table.Resolved(event.id, event.service, now);
                break;
            case DnssdEvent::Kind::Gone:
                table.Gone(event.id);
                break;
            case DnssdEvent::Kind::Settled:
                return Settled();
            case DnssdEvent::Kind::Interrupted:
                ReportProblem("Avahi ended; printers are looked for again when it is back");
                table.AllGone();
                break;
            case DnssdEvent::Kind::Failed:
                return Fail(event.result, event.message);
        }
        return std::nullopt;
    }

    // A host without a network may still announce its own printers to itself.
    std::optional<int> Settled() const {
        if (!table.IsEmpty() || IsOnNetwork()) {
            return std::nullopt;
        }
        return Fail(kNoNetwork, "this host is on no network: no interface has an IPv4 address");
    }

    AvahiSilence& silence;
    AvahiHang hang;
    PrinterTable table{kAnswerPatience};
};

}  // namespace

ScanSession::ScanSession(Reporter printerReporter, Reach looksWhere)
    : reporter(std::move(printerReporter)),
      reach(looksWhere),
      inbox(std::make_shared<Inbox>()),
      silence(Clock::now()) {}

ScanSession::~ScanSession() = default;

int ScanSession::Run() {
    const auto box = inbox;
    DnssdBrowser browser([box, where = reach](DnssdEvent event) {
        if (where == Reach::Everywhere || !IsLoopback(event.id.interface)) {
            box->Put(std::move(event));
        }
    });
    QueryPool queries([box](PrinterTable::QueryId query, const IppAnswer& said) {
        box->Put(Answer{query, said});
    });
    Course course(silence);
    std::optional<Clock::time_point> next = Clock::now();
    while (true) {
        const std::optional<Message> message = inbox->Take(next);
        if (inbox->IsClosed()) {
            return silence.IsTold() || course.IsHanging() ? kNoBrowsing : kOk;
        }
        const auto now = Clock::now();
        auto result = message ? course.Take(*message, now) : course.Overdue(now);
        if (!result) {
            result = course.Hanging(browser.WaitsSince(), now);
        }
        if (result) {
            return *result;
        }
        const PrinterTable::Work work = course.Advance(now, queries.Room());
        for (const PrinterTable::Query& query : work.queries) {
            queries.Start(query);
        }
        next = work.next;
        for (const PrinterTable::QueryId query : work.overdue) {
            if (queries.Drop(query)) {
                course.WasSilent(query);
                next = now;
            }
        }
        for (const ServiceId& id : work.answered) {
            browser.Answered(id);
        }
        for (const Printer& printer : work.reports) {
            Report(printer);
        }
        for (const Printer& printer : work.leftOut) {
            SayLeftOut(printer);
        }
    }
}

void ScanSession::Report(const Printer& printer) {
    KnownPrinters().Remember(printer);
    ReportDetail("found " + Summary(printer));
    gate.Pass([&] { reporter(printer); });
}

void ScanSession::SayLeftOut(const Printer& printer) {
    if (leftOutLines < kMaxLinesOfLeftOut) {
        const bool last = ++leftOutLines == kMaxLinesOfLeftOut;
        ReportDetail(printer.id.name + " at " + printer.address + ":" +
                     std::to_string(printer.port) +
                     " is left out: too many services claim to be that printer" +
                     (last ? "; others are not reported" : ""));
    }
}

bool ScanSession::Stop(std::chrono::milliseconds patience) {
    silence.TellAtStop(Clock::now());
    inbox->Close();
    return gate.Close(patience);
}

}  // namespace Driverless
