#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "platform/PrinterDiscoverAPI/export.h"
#include "platform/os.h"

namespace PrinterUsbApiStruct {

// What happened to a device: it was unplugged, or plugged in.
enum EmDeviceState : std::int32_t { DEVICE_STATE_REMOVED = 0, DEVICE_STATE_ARRIVED = 1 };

}  // namespace PrinterUsbApiStruct

namespace PrinterDiscoverAPI {

// Where device changes are reported. `callback` is called on a thread of the manager's, one change
// at a time and in the order in which they happened, with the USB printer class
// {28d78fad-5a12-11d1-ae5b-0000f803a8c2}, what happened, and the device's hardware identifier in
// the form VID_vvvv&PID_pppp. Its result is ignored; an exception is logged and goes no further.
struct DeviceStateChangeCallbackInfo {
    std::int32_t (*callback)(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                             const std::wstring& deviceId);
    std::int32_t value;  // the caller's own value
};
static_assert(sizeof(DeviceStateChangeCallbackInfo) == 16);
static_assert(alignof(DeviceStateChangeCallbackInfo) == 8);
static_assert(offsetof(DeviceStateChangeCallbackInfo, callback) == 0);
static_assert(offsetof(DeviceStateChangeCallbackInfo, value) == 8);

// The application's view of the printers on the host's USB ports, of the library
// PrinterDiscoverAPI. Whoever replaces that library provides this class. A printer is a device with
// at least one interface of the USB printer class, and is one device however many it has. Every
// operation is safe from any thread, also from inside a report.
class PRINTERDISCOVERAPI_API PrinterUsbDeviceManager {
public:
    static PrinterUsbDeviceManager& GetInstance();

    // Replaces `ports` with the printers that are plugged in now. The key is the hardware
    // identifier in the form that vendor lists use, VID_vvvv&PID_pppp with upper-case hexadecimal
    // digits; the value is how many devices of that identifier there are, and the bus number of the
    // first (0 where the system does not number its buses). A device that goes away meanwhile is
    // left out. When the system cannot say, the reason is logged and `ports` is empty; that it
    // shows no USB devices at all, as in a container, is logged once.
    void GetCurrentPrinterPorts(std::map<std::wstring, std::pair<int, int>>& ports);

    // Reports printers that are plugged in or out from now on; devices that are there already are
    // not reported when the system tells of them again, but when they go. What happens while the
    // system's device service is away is reported, as far as it made a difference, when it is back.
    // What a device service that hangs, or was killed, does not pass on is reported when it is 3
    // seconds late, and from then on at once; that it is so is logged.
    // A second start replaces the registration: when it returns the former one is not called any
    // more, except that a report from inside which it is called goes to its end. 0 on success; -1,
    // with the reason logged, without a callback or when the device service cannot be used.
    int StartMonitor(const DeviceStateChangeCallbackInfo& info);

    // Ends the reports. When it returns no report is being delivered any more, to whoever called it
    // and on however many threads; from inside a report it returns at once, and that report is the
    // last. Without a start it does nothing. It may be called while the process ends.
    void StopMonitor();

    PrinterUsbDeviceManager(const PrinterUsbDeviceManager&) = delete;
    PrinterUsbDeviceManager& operator=(const PrinterUsbDeviceManager&) = delete;

private:
    PrinterUsbDeviceManager() = default;
    ~PrinterUsbDeviceManager() = default;
};

}  // namespace PrinterDiscoverAPI
