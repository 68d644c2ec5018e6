// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "platform/PrinterDiscoverAPI/export.h"
#include "platform/os.h"

namespace PrinterUsbApiStruct {

// Whether a device was unplugged or plugged in.
enum EmDeviceState : std::int32_t { DEVICE_STATE_REMOVED = 0, DEVICE_STATE_ARRIVED = 1 };

}  // namespace PrinterUsbApiStruct

namespace PrinterDiscoverAPI {

// Where device changes are reported. The manager calls `callback` on its own thread, one change at
// a time, in the order in which they happened. The arguments are the USB printer class
// {28d78fad-5a12-11d1-ae5b-0000f803a8c2}, the change, and the device's hardware identifier in the
// form VID_vvvv&PID_pppp. The result is ignored; exceptions are caught and logged.
struct DeviceStateChangeCallbackInfo {
    std::int32_t (*callback)(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
                             const std::wstring& deviceId);
    std::int32_t value;  // the caller's own value
};
static_assert(sizeof(DeviceStateChangeCallbackInfo) == 16);
static_assert(alignof(DeviceStateChangeCallbackInfo) == 8);
static_assert(offsetof(DeviceStateChangeCallbackInfo, callback) == 0);
static_assert(offsetof(DeviceStateChangeCallbackInfo, value) == 8);

// The printers on the host's USB ports, from the application's library PrinterDiscoverAPI. A
// replacement of the library provides this class. A printer is a device with at least one interface
// of the USB printer class; a device with several counts once. Every operation is safe from any
// thread, also from inside a report.
class PRINTERDISCOVERAPI_API PrinterUsbDeviceManager {
public:
    static PrinterUsbDeviceManager& GetInstance();

    // Replaces `ports` with the printers that are plugged in now. The key is the hardware
    // identifier in the form that vendor lists use, VID_vvvv&PID_pppp with upper-case hexadecimal
    // digits. The value is the number of devices with that identifier, and the bus number of the
    // first (0 where the system does not number its buses). A device that is unplugged during the
    // call is left out. On failure `ports` is empty and the reason is logged; that the system shows
    // no USB devices at all, as in a container, is logged once.
    void GetCurrentPrinterPorts(std::map<std::wstring, std::pair<int, int>>& ports);

    // Reports printers that are plugged in or unplugged from now on. Devices already present are
    // not reported as arrivals; their removal is.
    //
    // While the system's device service is stopped nothing is reported; when it is back, the
    // differences are. If the device service hangs or was killed, a change that it does not pass on
    // is reported 3 seconds late, and later changes at once; this is logged.
    //
    // A second start replaces the registration: after it has returned the former callback is not
    // called again, except that a report from inside which the start was made runs to its end.
    // Returns 0 on success; -1, with the reason logged, without a callback or when the device
    // service cannot be used.
    int StartMonitor(const DeviceStateChangeCallbackInfo& info);

    // Ends the reports. After it has returned no report is running, whichever thread called it.
    // Called from inside a report it returns at once, and that report is the last. Does nothing
    // without a start. May be called during process exit.
    void StopMonitor();

    PrinterUsbDeviceManager(const PrinterUsbDeviceManager&) = delete;
    PrinterUsbDeviceManager& operator=(const PrinterUsbDeviceManager&) = delete;

private:
    PrinterUsbDeviceManager() = default;
    ~PrinterUsbDeviceManager() = default;
};

}  // namespace PrinterDiscoverAPI
