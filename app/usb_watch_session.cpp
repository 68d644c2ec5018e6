#include "app/usb_watch_session.h"

#include "app/awaiting.h"
#include "app/messages.h"
#include "app/usb_vendors.h"

namespace App {

namespace {

using PrinterDeviceDiscoverSdk::DiscoverUsbInterface;

int OnArrival(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    ArrivalList::GetInstance().Add({UsbPrinter(*device), std::chrono::system_clock::now()});
    return 0;
}

}  // namespace

UsbWatchSession::UsbWatchSession(const Settings& settings) {
    for (const std::string& problem : RequireUsbVendors("GetDeviceInfoByUsb", {})) {
        Warn(problem);
    }
    const std::function<int()> work = [] {
        return DiscoverUsbInterface::GetInstance().StartDeviceMonitor({OnArrival, 0});
    };
    Await(settings, "Asking for what is plugged in", work);
    watch.emplace("watch", "the device manager has not stopped its reports",
                  [] { return DiscoverUsbInterface::GetInstance().StopDeviceMonitor(); });
}

}  // namespace App
