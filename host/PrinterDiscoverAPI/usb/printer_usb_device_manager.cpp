// SPDX-License-Identifier: Apache-2.0

#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

#include <array>
#include <set>
#include <string>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/usb/usb_manager.h"
#include "host/PrinterDiscoverAPI/usb/usb_monitor.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbControl.h"

namespace PrinterDiscoverAPI {

namespace {

// The problem of the thread's last operation. Trivially destructible: threads may end after the
// library's objects are destroyed.
thread_local std::array<char, 512> lastUsbProblem{};

void Keep(const std::string& problem) {
    Base::CopyUtf8(problem, lastUsbProblem.data(), lastUsbProblem.size());
}

void LogNoPorts(const std::string& problem) {
    Host::Report(LOG_LEVEL_ERROR, L"USB printers: " + Base::FromUtf8(problem),
                 L"PrinterUsbDeviceManager::GetCurrentPrinterPorts");
}

// Once: it stays so, and those who ask are many.
void LogHidden(const std::string& reason) {
    static const bool logged = [&] {
        LogNoPorts(reason);
        return true;
    }();
    static_cast<void>(logged);
}

int Give(const char* problem, char* text, std::size_t size) {
    Base::CopyUtf8(problem, text, size);
    return *problem == '\0' ? 0 : 1;
}

}  // namespace

PrinterUsbDeviceManager& PrinterUsbDeviceManager::GetInstance() {
    static PrinterUsbDeviceManager& instance = *new PrinterUsbDeviceManager;
    return instance;
}

void PrinterUsbDeviceManager::GetCurrentPrinterPorts(
    std::map<std::wstring, std::pair<int, int>>& ports) {
    ports.clear();
    std::vector<UsbPrinter> printers;
    std::string problem;
    if (!ListUsbPrinters(printers, problem)) {
        Keep(problem);
        LogNoPorts(problem);
        return;
    }
    const std::string hidden = printers.empty() ? WhyUsbIsHidden() : std::string();
    Keep(hidden);
    if (!hidden.empty()) {
        LogHidden(hidden);
        return;
    }
    std::set<std::string> counted;
    for (const UsbPrinter& printer : printers) {
        if (counted.insert(printer.devicePath).second) {
            ++ports.try_emplace(printer.hardwareId, 0, printer.bus).first->second.first;
        }
    }
}

int PrinterUsbDeviceManager::StartMonitor(const DeviceStateChangeCallbackInfo& info) {
    std::string problem;
    const int result = UsbMonitor::GetInstance().Start(info, problem);
    Keep(problem);
    return result;
}

void PrinterUsbDeviceManager::StopMonitor() {
    UsbMonitor::GetInstance().Stop();
}

}  // namespace PrinterDiscoverAPI

int PrinterUsbProblem(char* text, std::size_t size) {
    return PrinterDiscoverAPI::Give(PrinterDiscoverAPI::lastUsbProblem.data(), text, size);
}

int PrinterUsbMonitorProblem(char* text, std::size_t size) {
    const std::string trouble = PrinterDiscoverAPI::UsbMonitor::GetInstance().Trouble();
    return PrinterDiscoverAPI::Give(trouble.c_str(), text, size);
}
