// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/usb_monitor.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>
#include <utility>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "platform/compiler.h"
#include "platform/os_calls.h"
#include "platform/process_end.h"

namespace PrinterDiscoverAPI {

namespace {

constexpr int kStarted = 0;
constexpr int kNotStarted = -1;
constexpr std::chrono::milliseconds kPause{100};

void LogProblem(const std::string& problem) {
    Host::Report(LOG_LEVEL_ERROR, L"USB monitor: " + Base::FromUtf8(problem),
                 L"PrinterUsbDeviceManager::StartMonitor");
}

void Report(const DeviceStateChangeCallbackInfo& registration, const UsbChange& change) {
    // An exception here would end the process.
    try {
        registration.callback(kUsbPrinterClass, change.state, change.hardwareId);
    } catch (const std::exception& error) {
        LogProblem(std::string("the callback failed: ") + error.what());
    }
    PLATFORM_CATCH_ALL {
        LogProblem("the callback failed");
    }
}

}  // namespace

UsbMonitor& UsbMonitor::GetInstance() {
    static UsbMonitor& instance = *new UsbMonitor;
    return instance;
}

int UsbMonitor::Start(const DeviceStateChangeCallbackInfo& info, std::string& problem) {
    if (info.callback == nullptr) {
        problem = "there is no callback to report to";
        LogProblem(problem);
        return kNotStarted;
    }
    std::unique_lock lock(mutex);
    if (!current) {
        current = NewRun(problem);
        if (!current) {
            LogProblem(problem);
            return kNotStarted;
        }
        trouble.clear();
    }
    registration = info;
    if (!IsInsideReport()) {
        WaitForReport(lock);
        WaitForRetired(lock);
    }
    return kStarted;
}

void UsbMonitor::Stop() {
    if (Platform::OtherThreadsAreGone()) {
        return;
    }
    std::unique_lock lock(mutex);
    registration = {};
    if (current) {
        current->ended = true;
        trouble.clear();
        current->events->Interrupt();
        retired.push_back(std::move(current));
    }
    if (!IsInsideReport()) {
        WaitForReport(lock);
        WaitForRetired(lock);
    }
}

std::string UsbMonitor::Trouble() {
    const std::lock_guard lock(mutex);
    return trouble;
}

// Starts a run that watches for events; null, with the reason in `problem`, on failure.
std::shared_ptr<UsbMonitor::Run> UsbMonitor::NewRun(std::string& problem) {
    try {
        auto run = std::make_shared<Run>();
        run->events = UsbEvents::Open(problem);
        std::vector<UsbPrinter> present;
        if (run->events && ListUsbPrinters(present, problem)) {
            run->table.Replace(present);
            // If this library is unloaded without a stop, the thread still runs.
            KeepLoaded(reinterpret_cast<const void*>(&GetInstance));
            run->thread = std::thread([this, run] { Watch(*run); });
            return run;
        }
    } catch (const std::exception& error) {
        problem = error.what();
    }
    return nullptr;
}

void UsbMonitor::Watch(Run& run) {
    bool hasLost = false;
    for (bool goesOn = true; goesOn;) {
        try {
            goesOn = hasLost ? DeliverAll(run, ChangesMeanwhile(run)) : TakeEvent(run);
            hasLost = false;
        } catch (const std::exception&) {
            // Usually memory has run out, even for a log line. The lost changes are found by a new
            // list.
            hasLost = true;
            std::this_thread::sleep_for(kPause);
        }
    }
}

// Waits for an event and reports what it has changed; false when the run is over.
bool UsbMonitor::TakeEvent(Run& run) {
    const UsbEvent event = run.events->Wait();
    if (event.kind == UsbEvent::Kind::interrupted) {
        return false;
    }
    return DeliverAll(run, ChangesBy(run, event));
}

// Reports the changes; false when the run is over.
bool UsbMonitor::DeliverAll(const Run& run, const std::vector<UsbChange>& changes) {
    return std::all_of(changes.begin(), changes.end(),
                       [&](const UsbChange& change) { return Deliver(run, change); });
}

std::vector<UsbChange> UsbMonitor::ChangesBy(Run& run, const UsbEvent& event) {
    if (event.kind == UsbEvent::Kind::added) {
        return run.table.Add(event.printer);
    }
    if (event.kind == UsbEvent::Kind::removed) {
        return run.table.Remove(event.printer.path);
    }
    SetTrouble(run, event.trouble);
    return event.kind == UsbEvent::Kind::missed ? ChangesMeanwhile(run) : std::vector<UsbChange>();
}

// Lists the printers again, retrying until that works, and returns the differences. Without a fresh
// list a replugged printer would go unnoticed.
std::vector<UsbChange> UsbMonitor::ChangesMeanwhile(Run& run) {
    std::string logged;
    while (!HasEnded(run)) {
        std::vector<UsbPrinter> present;
        std::string problem;
        if (ListUsbPrinters(present, problem)) {
            SetTrouble(run, {});
            return run.table.Replace(present);
        }
        if (problem != logged) {
            SetTrouble(run, "events were missed, and " + problem);
            logged = problem;
        }
        std::this_thread::sleep_for(kPause);
    }
    return {};
}

// Logs each new problem.
void UsbMonitor::SetTrouble(const Run& run, const std::string& text) {
    {
        const std::lock_guard lock(mutex);
        if (run.ended || trouble == text) {
            return;
        }
        trouble = text;
    }
    if (!text.empty()) {
        LogProblem(text);
    }
}

bool UsbMonitor::HasEnded(const Run& run) {
    const std::lock_guard lock(mutex);
    return run.ended;
}

// Reports one change; false when the run is over.
bool UsbMonitor::Deliver(const Run& run, const UsbChange& change) {
    std::unique_lock lock(mutex);
    // A run that was ended from inside a report may still be delivering that report.
    reported.wait(lock, [this] { return reporter == std::thread::id(); });
    if (run.ended) {
        return false;
    }
    const DeviceStateChangeCallbackInfo now = registration;
    reporter = std::this_thread::get_id();
    lock.unlock();
    Report(now, change);
    lock.lock();
    reporter = {};
    ++reports;
    reported.notify_all();
    return !run.ended;
}

bool UsbMonitor::IsInsideReport() const {
    return reporter == std::this_thread::get_id();
}

// Waits until the running report has been delivered.
void UsbMonitor::WaitForReport(std::unique_lock<std::mutex>& lock) {
    if (reporter != std::thread::id()) {
        reported.wait(lock, [this, before = reports] { return reports != before; });
    }
}

// Joins the threads of ended runs.
void UsbMonitor::WaitForRetired(std::unique_lock<std::mutex>& lock) {
    const std::vector<std::shared_ptr<Run>> over = std::exchange(retired, {});
    lock.unlock();
    for (const std::shared_ptr<Run>& run : over) {
        run->thread.join();
    }
}

}  // namespace PrinterDiscoverAPI
