// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

#include <setupapi.h>

#include <algorithm>
#include <vector>

#include "host/PrinterDiscoverAPI/usb/windows/usb_device_path.h"
#include "host/PrinterDiscoverAPI/usb/windows/usb_notifications_windows.h"

namespace PrinterDiscoverAPI {

namespace {

struct DestroyDeviceList {
    using pointer = HDEVINFO;
    void operator()(HDEVINFO list) const { SetupDiDestroyDeviceInfoList(list); }
};
using DeviceList = std::unique_ptr<HDEVINFO, DestroyDeviceList>;

// The path of a device interface; empty when it is gone.
std::wstring PathOf(HDEVINFO devices, SP_DEVICE_INTERFACE_DATA& part) {
    DWORD size = 0;
    SetupDiGetDeviceInterfaceDetailW(devices, &part, nullptr, 0, &size, nullptr);
    std::vector<std::byte> room(
        std::max<std::size_t>(size, sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W)));
    auto* detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(room.data());
    detail->cbSize = sizeof *detail;
    if (SetupDiGetDeviceInterfaceDetailW(devices, &part, detail, static_cast<DWORD>(room.size()),
                                         nullptr, nullptr) == 0) {
        return {};
    }
    return detail->DevicePath;
}

class WindowsUsbEvents : public UsbEvents {
public:
    explicit WindowsUsbEvents(std::string& problem) {
        notifications = NotifyByConfigurationManager(queue, problem);
        if (!notifications && problem.empty()) {
            notifications = NotifyByWindow(queue, problem);
        }
    }
    UsbEvent Wait() override { return queue.Wait(); }
    void Interrupt() override { queue.Interrupt(); }

private:
    UsbEventQueue queue;
    // Destroyed before the queue it fills.
    std::unique_ptr<UsbNotifications> notifications;
};

}  // namespace

bool ListUsbPrinters(std::vector<UsbPrinter>& printers, std::string& problem) {
    const DeviceList devices(SetupDiGetClassDevsW(&kUsbPrinterClass, nullptr, nullptr,
                                                  DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    if (devices.get() == INVALID_HANDLE_VALUE) {
        problem = SystemProblem("SetupDiGetClassDevsW", GetLastError());
        return false;
    }
    SP_DEVICE_INTERFACE_DATA part{};
    part.cbSize = sizeof part;
    for (DWORD index = 0;
         SetupDiEnumDeviceInterfaces(devices.get(), nullptr, &kUsbPrinterClass, index, &part) != 0;
         ++index) {
        if (const auto printer = UsbPrinterOfPath(PathOf(devices.get(), part))) {
            printers.push_back(*printer);
        }
    }
    if (GetLastError() != ERROR_NO_MORE_ITEMS) {
        problem = SystemProblem("SetupDiEnumDeviceInterfaces", GetLastError());
        return false;
    }
    std::sort(printers.begin(), printers.end(),
              [](const UsbPrinter& one, const UsbPrinter& other) { return one.path < other.path; });
    return true;
}

std::string WhyUsbIsHidden() {
    return {};
}

std::unique_ptr<UsbEvents> UsbEvents::Open(std::string& problem) {
    auto events = std::make_unique<WindowsUsbEvents>(problem);
    return problem.empty() ? std::move(events) : nullptr;
}

}  // namespace PrinterDiscoverAPI
