// SPDX-License-Identifier: Apache-2.0

#include <stdexcept>
#include <string>
#include <vector>

#include "DeviceDiscover/usb.h"
#include "broker/binding/relay.h"
#include "broker/binding/vendor_thread.h"
#include "broker/log/log_line.h"
#include "platform/os_calls.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

// The time that a printer needs after it is plugged in until it answers.
constexpr std::uint32_t kSettleMilliseconds = 1000;

int Trampoline(const GUID& deviceClass, PrinterUsbApiStruct::EmDeviceState state,
               const std::wstring& deviceId) {
    return UsbInterfaceMonitor::GetInstance().CallBackFunc(deviceClass, state, deviceId);
}

// Reads the records of the printers with the identifier from UsbConnInterface. An identifier that
// is too short throws; on a detached thread that exception must not end the process.
int RecordsOf(const std::wstring& deviceId, std::vector<DeviceInfo>& devices,
              const Broker::Location& where) {
    try {
        return UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId);
    } catch (const std::out_of_range& error) {
        Broker::Log(LOG_LEVEL_ERROR, where,
                    "deviceId is too short, err:", std::string_view(error.what()));
        return kNothingToCall;
    }
}

}  // namespace

UsbInterfaceMonitor& UsbInterfaceMonitor::GetInstance() {
    static UsbInterfaceMonitor instance;
    return instance;
}

UsbInterfaceMonitor::UsbInterfaceMonitor() {
    ClearDeviceStateCallbackInfo();
}

PrinterDiscoverAPI::DeviceStateChangeCallbackInfo UsbInterfaceMonitor::SetDeviceStateCallbackInfo(
    const DeviceCallbackInfo& info) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Set info", info.param);
    Broker::Register(registration, info);
    return {Trampoline, info.param};
}

void UsbInterfaceMonitor::ClearDeviceStateCallbackInfo() {
    Broker::ClearRegistration(registration, HERE);
}

int UsbInterfaceMonitor::CallBackFunc(const GUID&, PrinterUsbApiStruct::EmDeviceState state,
                                      const std::wstring& deviceId) {
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "CallBackFunc in");
    if (Broker::Callback(registration) == nullptr ||
        state != PrinterUsbApiStruct::DEVICE_STATE_ARRIVED) {
        return 0;
    }
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "Reciver driver State Change: deviceId =", deviceId);
    Broker::RunDetached([this, deviceId] {
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "sleep 1000");
        Sleep(kSettleMilliseconds);
        std::vector<DeviceInfo> devices;
        const int result = RecordsOf(deviceId, devices, HERE);
        if (result != 0) {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", result);
            return;
        }
        for (const DeviceInfo& device : devices) {
            Broker::Log(LOG_LEVEL_DEBUG, HERE, "callback ok");
            // Read just before the call: the callback may have been replaced or cleared meanwhile.
            if (const auto callback = Broker::Callback(registration)) {
                callback(&device);
            }
        }
    });
    return 0;
}

}  // namespace PrinterDeviceDiscoverSdk
