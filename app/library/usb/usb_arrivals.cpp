// SPDX-License-Identifier: Apache-2.0

#include "app/library/usb/usb_arrivals.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "app/items/usb_printer.h"
#include "app/library/access_point_printer.h"
#include "app/library/usb/host_usb_problem.h"
#include "app/outcome/problem.h"
#include "app/program/messages.h"
#include "app/terminal/crash_report.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using PrinterDiscoverAPI::PrinterUsbDeviceManager;
using PrinterUtil::WStringToString;

using Clock = std::chrono::steady_clock;

// What a printer takes to answer once it is plugged in.
constexpr std::chrono::seconds kSettleTime{1};

constexpr ArrivalQueue::Limits kLimits{kUsbQuestionsAtATime, 2 * kUsbQuestionsAtATime, 1024};
constexpr std::size_t kMaxModels = 4096;
constexpr int kMaxSurplus = static_cast<int>(kLimits.waiting) + 1;  // one is missed

// However many the device manager has told of.
constexpr std::size_t kAnyCount = static_cast<std::size_t>(-1);

int CountIn(const UsbPortMap& ports, const std::wstring& deviceId) {
    const auto port = ports.find(deviceId);
    return port == ports.end() ? 0 : std::max(port->second.first, 1);
}

std::string VendorOf(const std::string& usbId) {
    return UsbVendorOf(usbId).value_or("-");
}

std::string NoAnswer(const std::string& usbId, std::chrono::duration<double> limit) {
    return fmt::format("{}: no answer from vendor {} (GetDeviceInfoByUsb) within {:g} s", usbId,
                       VendorOf(usbId), limit.count());
}

}  // namespace

class UsbArrivals::Asking {
public:
    Asking(UsbArrivals& allArrivals, const ArrivalQueue::Question& oneQuestion)
        : arrivals(allArrivals), question(oneQuestion) {}
    ~Asking() { arrivals.Report(question, outcome); }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;

    void Answered(UsbAnswer answer, std::string problem) {
        outcome = {std::move(answer), std::move(problem), true};
    }
    void Failed(const std::string& problem) {
        outcome.problem = WStringToString(question.arrival.deviceId) + ": " + problem;
    }

private:
    UsbArrivals& arrivals;
    const ArrivalQueue::Question& question;
    Outcome outcome{{},
                    WStringToString(question.arrival.deviceId) +
                        ": its vendor ended the thread on which it was called",
                    false};
};

UsbArrivals::UsbArrivals() : queue(kLimits) {}

// Never destroyed: its threads may run while the process ends.
UsbArrivals& UsbArrivals::GetInstance() {
    static UsbArrivals& arrivals = *new UsbArrivals;
    return arrivals;
}

void UsbArrivals::Start(ArrivalQueue::Duration vendorsPatience) {
    // The device manager may keep a reference to it.
    static const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo registration{OnChange, 0};
    if (PrinterUsbDeviceManager::GetInstance().StartMonitor(registration) != 0) {
        const std::string problem = LastUsbProblem();
        throw Problem("cannot watch for printers that are plugged in" +
                      (problem.empty() ? "." : ": " + problem + "."));
    }
    try {
        const std::lock_guard lock(mutex);
        patience = vendorsPatience;
        queue.SetPatience(patience);
        asker = std::thread([this] { AskInTurn(); });
        isOpen = true;  // it waits for the lock
    } catch (const std::system_error&) {
        PrinterUsbDeviceManager::GetInstance().StopMonitor();
        throw Problem("cannot watch for printers that are plugged in: no thread could be started.");
    }
}

int UsbArrivals::Stop() {
    {
        const std::lock_guard lock(mutex);
        isOpen = false;
        unasked = queue.Unasked(Clock::now());
        changed.notify_all();
    }
    PrinterUsbDeviceManager::GetInstance().StopMonitor();
    asker.join();
    return 0;
}

void UsbArrivals::Compare(const UsbPortMap& before, const UsbPortMap& after) {
    const std::lock_guard lock(mutex);
    for (const auto& port : after) {
        const int surplus = CountIn(after, port.first) - CountIn(before, port.first);
        for (int one = 0; one < std::min(surplus, kMaxSurplus); ++one) {
            Add(port.first, static_cast<std::size_t>(one) + 1);
        }
    }
}

std::int32_t UsbArrivals::OnChange(const GUID&, PrinterUsbApiStruct::EmDeviceState state,
                                   const std::wstring& deviceId) {
    if (state != PrinterUsbApiStruct::DEVICE_STATE_ARRIVED) {
        return 0;
    }
    UsbArrivals& arrivals = GetInstance();
    const std::lock_guard lock(arrivals.mutex);
    if (Model* const model = arrivals.ModelOf(deviceId)) {
        ++model->told;
        arrivals.Add(deviceId, kAnyCount);
    } else {
        arrivals.queue.Miss();
    }
    return 0;
}

// Null for a new model when too many are known.
UsbArrivals::Model* UsbArrivals::ModelOf(const std::wstring& deviceId) {
    const auto known = models.find(deviceId);
    if (known == models.end() && models.size() >= kMaxModels) {
        return nullptr;
    }
    return known == models.end() ? &models[deviceId] : &known->second;
}

// It is asked about when it has settled, unless the device manager has told of that many by then.
void UsbArrivals::Add(const std::wstring& deviceId, std::size_t unlessTold) {
    queue.Add({deviceId, unlessTold}, Clock::now() + kSettleTime);
    changed.notify_all();
}

void UsbArrivals::AskInTurn() {
    std::unique_lock lock(mutex);
    while (isOpen) {
        try {
            BeginQuestions();
        } catch (const std::exception&) {  // no memory
            queue.Miss();
            changed.wait_for(lock, kSettleTime);
            continue;
        }
        if (const auto next = queue.Next()) {
            changed.wait_until(lock, *next);
        } else {
            changed.wait(lock);
        }
    }
}

void UsbArrivals::BeginQuestions() {
    const auto now = Clock::now();
    for (const std::wstring& deviceId : queue.TakeLate(now)) {
        RemarkLate(deviceId);
    }
    while (const auto question = queue.Begin(now)) {
        try {
            if (!IsBegun(*question)) {
                queue.End(question->number);
            }
        } catch (const std::exception&) {  // no thread, or no memory
            queue.End(question->number);
            queue.Miss();
        }
    }
}

// False when it need not be asked.
bool UsbArrivals::IsBegun(const ArrivalQueue::Question& question) {
    Model* const model = ModelOf(question.arrival.deviceId);
    if (model == nullptr || model->told >= question.arrival.unlessTold) {
        return false;
    }
    // Under the lock: it does not end before it is detached.
    std::thread([this, question] { Ask(question); }).detach();
    ++model->asked;
    return true;
}

// Each model once, until its vendor answers.
void UsbArrivals::RemarkLate(const std::wstring& deviceId) {
    Model& model = models[deviceId];
    if (!model.isLate) {
        model.isLate = true;
        late.push_back(deviceId);
    }
}

void UsbArrivals::Ask(const ArrivalQueue::Question& question) {
    ReportCrashesOfThisThread();
    Asking asking(*this, question);
    const std::wstring& deviceId = question.arrival.deviceId;
    // A vendor that ends the thread ends it here, and nothing else.
    std::packaged_task<UsbAnswer()> task([&] { return AskUsbVendor(deviceId); });
    task();
    try {
        const UsbAnswer answer = task.get_future().get();
        asking.Answered(answer, WhyUsbAnswerIsNone(WStringToString(deviceId), answer));
    } catch (const std::out_of_range&) {
        asking.Failed("too short to name a printer; write it as VID_vvvv&PID_pppp");
    } catch (const std::exception& error) {
        asking.Failed(std::string("its vendor threw an exception: ") + error.what());
    } catch (...) {
        asking.Failed("its vendor threw an exception");
    }
}

void UsbArrivals::Report(const ArrivalQueue::Question& question, const Outcome& outcome) {
    const std::lock_guard lock(mutex);
    Model& model = models[question.arrival.deviceId];
    ++model.answered;
    model.isLate = false;
    model.problem = outcome.problem;
    model.isAnswered = outcome.isAnswer;
    for (const UsbPrinter& printer : outcome.answer.printers) {
        if (isOpen) {
            ArrivalList::GetInstance().Add({printer, std::chrono::system_clock::now()});
        }
    }
    queue.End(question.number);
    changed.notify_all();
}

std::vector<std::string> UsbArrivals::TakeRemarks() {
    std::vector<std::string> remarks;
    const std::lock_guard lock(mutex);
    for (const std::wstring& deviceId : std::exchange(late, {})) {
        if (lateLines.Admits()) {
            remarks.push_back(NoAnswer(WStringToString(deviceId), patience));
        }
    }
    if (const std::size_t rest = isOpen ? 0 : lateLines.TakeRest(); rest != 0) {
        remarks.push_back(fmt::format("and {} more without an answer in time", rest));
    }
    if (queue.HasMissed() && !std::exchange(isMissingRemarked, true)) {
        remarks.emplace_back(
            "the vendors answer too slowly: they are not asked about some of the printers that "
            "were plugged in");
    }
    return remarks;
}

std::vector<std::string> UsbArrivals::Unreported(const UsbPortMap& before,
                                                 const UsbPortMap& now) const {
    std::vector<std::string> lines;
    const std::lock_guard lock(mutex);
    for (const auto& port : now) {
        const auto model = models.find(port.first);
        if (model == models.end() || model->second.asked == 0) {
            if (CountIn(before, port.first) == 0) {
                lines.push_back(WStringToString(port.first) +
                                ": plugged in, but not reported: it has only just come, or "
                                "the system did not report it; the log says why");
            }
        } else if (model->second.isAnswered && !model->second.problem.empty()) {
            lines.push_back(model->second.problem);
        }
    }
    return lines;
}

std::vector<std::string> UsbArrivals::Unanswered(bool alsoRemarked) const {
    std::vector<std::string> lines;
    const std::lock_guard lock(mutex);
    for (const auto& [deviceId, model] : models) {
        const std::string usbId = WStringToString(deviceId);
        if (!model.isAnswered && !model.problem.empty()) {
            lines.push_back(model.problem);
        } else if (model.isLate && alsoRemarked) {
            lines.push_back(NoAnswer(usbId, patience));
        } else if (!model.isLate && model.answered < model.asked) {
            lines.push_back(usbId + ": its vendor " + VendorOf(usbId) + " has not answered yet");
        }
    }
    if (unasked != 0) {
        lines.push_back(fmt::format("{} {} not asked about: too many vendors have not answered yet",
                                    CountOf<Arrival>(unasked), unasked == 1 ? "was" : "were"));
    }
    return lines;
}

}  // namespace App
