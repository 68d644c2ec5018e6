#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

#include <set>

#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/usb_manager.h"
#include "host/PrinterDiscoverAPI/usb_monitor.h"
#include "host/common/utf8.h"

namespace PrinterDiscoverAPI {

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
        Host::Report(LOG_LEVEL_ERROR, L"USB printers: " + Host::FromUtf8(problem),
                     L"PrinterUsbDeviceManager::GetCurrentPrinterPorts");
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
    return UsbMonitor::GetInstance().Start(info);
}

void PrinterUsbDeviceManager::StopMonitor() {
    UsbMonitor::GetInstance().Stop();
}

}  // namespace PrinterDiscoverAPI
