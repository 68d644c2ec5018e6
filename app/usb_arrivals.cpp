#include "app/usb_arrivals.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

#include "app/access_point_printer.h"
#include "app/arrival_list.h"
#include "app/crash_report.h"
#include "app/host_usb_problem.h"
#include "app/problem.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace App {

namespace {

using PrinterDiscoverAPI::PrinterUsbDeviceManager;
using PrinterUtil::WStringToString;

// What a printer takes to answer once it is plugged in.
constexpr std::chrono::seconds kSettleTime{1};

// However many the device manager has told of.
constexpr std::size_t kAnyCount = static_cast<std::size_t>(-1);

int CountIn(const UsbPortMap& ports, const std::wstring& deviceId) {
    const auto port = ports.find(deviceId);
    return port == ports.end() ? 0 : std::max(port->second.first, 1);
}

}  // namespace

// Never destroyed: its threads may run while the process ends.
UsbArrivals& UsbArrivals::GetInstance() {
    static UsbArrivals& arrivals = *new UsbArrivals;
    return arrivals;
}

void UsbArrivals::Start() {
    {
        const std::lock_guard lock(mutex);
        isOpen = true;
    }
    // The device manager may hold on to it.
    static const PrinterDiscoverAPI::DeviceStateChangeCallbackInfo registration{OnChange, 0};
    if (PrinterUsbDeviceManager::GetInstance().StartMonitor(registration) != 0) {
        const std::string problem = LastUsbProblem();
        throw Problem("printers that are plugged in cannot be watched" +
                      (problem.empty() ? "." : ": " + problem + "."));
    }
}

int UsbArrivals::Stop() {
    {
        const std::lock_guard lock(mutex);
        isOpen = false;
    }
    PrinterUsbDeviceManager::GetInstance().StopMonitor();
    return 0;
}

void UsbArrivals::Compare(const UsbPortMap& before, const UsbPortMap& after) {
    for (const auto& port : after) {
        const int surplus = CountIn(after, port.first) - CountIn(before, port.first);
        for (int one = 0; one < surplus; ++one) {
            AskSoon(port.first, static_cast<std::size_t>(one) + 1);
        }
    }
}

std::int32_t UsbArrivals::OnChange(const GUID&, PrinterUsbApiStruct::EmDeviceState state,
                                   const std::wstring& deviceId) {
    if (state != PrinterUsbApiStruct::DEVICE_STATE_ARRIVED) {
        return 0;
    }
    UsbArrivals& arrivals = GetInstance();
    {
        const std::lock_guard lock(arrivals.mutex);
        ++arrivals.models[deviceId].told;
    }
    arrivals.AskSoon(deviceId, kAnyCount);
    return 0;
}

// Asks about it when it has settled, unless the device manager has told of that many by then.
void UsbArrivals::AskSoon(const std::wstring& deviceId, std::size_t unlessTold) {
    std::thread([this, deviceId, unlessTold] {
        ReportCrashesOfThisThread();
        std::this_thread::sleep_for(kSettleTime);
        Ask(deviceId, unlessTold);
    }).detach();
}

void UsbArrivals::Ask(const std::wstring& deviceId, std::size_t unlessTold) {
    if (!BeginQuestion(deviceId, unlessTold)) {
        return;
    }
    const std::string usbId = WStringToString(deviceId);
    UsbAnswer answer;
    std::string problem;
    // A vendor that ends the thread ends it here, and nothing else.
    std::packaged_task<UsbAnswer()> question([&] { return AskUsbVendor(deviceId); });
    question();
    try {
        answer = question.get_future().get();
        problem = WhyUsbAnswerIsNone(usbId, answer);
    } catch (const std::out_of_range&) {
        problem = usbId + ": too short to name a printer; write it as VID_vvvv&PID_pppp";
    } catch (const std::exception& error) {
        problem = usbId + ": an exception came out of its vendor: " + error.what();
    } catch (...) {
        problem = usbId + ": an exception came out of its vendor";
    }
    Report(deviceId, answer, problem);
}

bool UsbArrivals::BeginQuestion(const std::wstring& deviceId, std::size_t unlessTold) {
    const std::lock_guard lock(mutex);
    Model& model = models[deviceId];
    if (!isOpen || model.told >= unlessTold) {
        return false;
    }
    ++model.asked;
    return true;
}

void UsbArrivals::Report(const std::wstring& deviceId, const UsbAnswer& answer,
                         const std::string& problem) {
    const std::lock_guard lock(mutex);
    Model& model = models[deviceId];
    ++model.answered;
    model.problem = problem;
    for (const UsbPrinter& printer : answer.printers) {
        if (isOpen) {
            ArrivalList::GetInstance().Add({printer, std::chrono::system_clock::now()});
        }
    }
}

std::vector<std::string> UsbArrivals::Unreported(const UsbPortMap& before,
                                                 const UsbPortMap& now) const {
    std::vector<std::string> lines;
    const std::lock_guard lock(mutex);
    for (const auto& port : now) {
        const std::string usbId = WStringToString(port.first);
        const auto model = models.find(port.first);
        if (model == models.end() || model->second.asked == 0) {
            if (CountIn(before, port.first) == 0) {
                lines.push_back(usbId +
                                ": plugged in, but it has only just come, or the watch was "
                                "not told of it; the log says why");
            }
        } else if (!model->second.problem.empty()) {
            lines.push_back(model->second.problem);
        } else if (model->second.answered < model->second.asked) {
            lines.push_back(usbId + ": its vendor " + UsbVendorOf(usbId).value_or("-") +
                            " has not answered yet");
        }
    }
    return lines;
}

}  // namespace App
