// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/setup/local_network.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "modules/driverless/common/diagnostics.h"
#include "modules/driverless/common/guarded.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/connect_state.h"
#include "modules/driverless/discovery/known_printers.h"
#include "modules/driverless/discovery/running_scans.h"
#include "modules/driverless/discovery/scan_session.h"
#include "modules/driverless/setup/access_point.h"

namespace Driverless {

namespace {

constexpr std::chrono::seconds kPatience{5};

// The wanted printer.
struct Wanted {
    std::string serialNumber;
    std::string uuid;

    // Other printers may have the same serial number.
    bool Is(const Printer& printer) const {
        if (!uuid.empty() && !printer.uuid.empty()) {
            return printer.uuid == uuid;
        }
        return printer.serialNumber == serialNumber;
    }
};

Wanted WantedBy(const Printer& printer) {
    const auto known = KnownPrinters().Find(printer);
    return {printer.serialNumber, known ? known->uuid : printer.uuid};
}

// The state shared by the scan's thread and the waiting thread.
class Search {
public:
    explicit Search(Wanted looked) : wanted(std::move(looked)) {}

    void Found(const Printer& printer) {
        if (wanted.Is(printer)) {
            const std::lock_guard lock(mutex);
            candidates.push_back(printer);
            changed.notify_all();
        }
    }

    void Ended(int result) {
        const std::lock_guard lock(mutex);
        ended = result;
        changed.notify_all();
    }

    // The next printer that may be the wanted one; nothing when none arrived in time or the scan
    // ended.
    std::optional<Printer> Next(Clock::time_point deadline) {
        std::unique_lock lock(mutex);
        changed.wait_until(lock, deadline, [this] { return ended || !candidates.empty(); });
        if (candidates.empty()) {
            return std::nullopt;
        }
        Printer printer = std::move(candidates.front());
        candidates.pop_front();
        return printer;
    }

    // Why the scan ended by itself; nothing while it runs.
    std::optional<int> Failure() {
        const std::lock_guard lock(mutex);
        return ended;
    }

private:
    const Wanted wanted;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Printer> candidates;
    std::optional<int> ended;
};

// A scan on a separate thread; it ends with this object.
class Looking {
public:
    explicit Looking(const std::shared_ptr<Search>& search)
        : scan(std::make_shared<ScanSession>(
              [search](const Printer& printer) { search->Found(printer); },
              ScanSession::Reach::NetworkOnly)) {
        std::thread([running = scan, search] {
            search->Ended(
                Guarded(kNoBrowsing, [&] { return RunningScans().Run(running.get(), running); }));
        }).detach();
    }
    ~Looking() { scan->Stop(std::chrono::milliseconds(0)); }

    Looking(const Looking&) = delete;
    Looking& operator=(const Looking&) = delete;

private:
    const std::shared_ptr<ScanSession> scan;
};

bool Answers(const Printer& printer) {
    const int state = ConnectState(printer);
    return state == kReady || state == kNotReady;
}

}  // namespace

class Arrival::State {
public:
    explicit State(Wanted wanted)
        : search(std::make_shared<Search>(std::move(wanted))), looking(search) {}

    const std::shared_ptr<Search> search;
    const Looking looking;
};

Arrival::Arrival(const Printer& printer) : state(std::make_unique<State>(WantedBy(printer))) {}

Arrival::~Arrival() = default;

bool Arrival::HasCome() {
    while (const auto printer = state->search->Next(Clock::now())) {
        if (Answers(*printer)) {
            return true;
        }
    }
    return false;
}

int IsOnLocalNetwork(const VendorSdk::DeviceInfo& record) {
    Wanted wanted = WantedBy(FromRecord(record));
    if (wanted.serialNumber.empty()) {
        return kNoIdentity;
    }
    const auto deadline = Clock::now() + kPatience;
    const auto search = std::make_shared<Search>(std::move(wanted));
    const Looking looking(search);
    const auto throughItsOwn = AddressOnPrintersNetwork(deadline);
    if (!throughItsOwn) {
        ReportProblem(
            "the host's Wi-Fi service does not answer: a printer that is found may be found "
            "through its own network");
        return search->Failure().value_or(kNoWifiAnswer);
    }
    while (const auto printer = search->Next(deadline)) {
        if (!throughItsOwn->empty() && printer->address == *throughItsOwn) {
            continue;
        }
        if (Answers(*printer)) {
            return kOk;
        }
        ReportDetail(printer->serialNumber + " is announced at " + printer->address +
                     ", but does not answer");
    }
    return search->Failure().value_or(kNotOnNetwork);
}

}  // namespace Driverless
