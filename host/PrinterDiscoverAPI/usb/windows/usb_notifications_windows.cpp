// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_notifications_windows.h"

#include <cfgmgr32.h>

#include <new>

#include "host/PrinterDiscoverAPI/usb/windows/usb_device_path.h"

namespace PrinterDiscoverAPI {

namespace {

// The functions that older systems lack.
using Register = CONFIGRET(WINAPI*)(PCM_NOTIFY_FILTER, PVOID, PCM_NOTIFY_CALLBACK,
                                    PHCMNOTIFICATION);
using Unregister = CONFIGRET(WINAPI*)(HCMNOTIFICATION);

template <class Function>
Function Find(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Called on a thread of the system.
DWORD CALLBACK TakeNotification(HCMNOTIFICATION, PVOID context, CM_NOTIFY_ACTION action,
                                PCM_NOTIFY_EVENT_DATA data, DWORD) {
    auto& queue = *static_cast<UsbEventQueue*>(context);
    const wchar_t* path = data->u.DeviceInterface.SymbolicLink;
    if (action == CM_NOTIFY_ACTION_DEVICEINTERFACEARRIVAL) {
        PutUsbEvent(queue, UsbEvent::Kind::added, path);
    } else if (action == CM_NOTIFY_ACTION_DEVICEINTERFACEREMOVAL) {
        PutUsbEvent(queue, UsbEvent::Kind::removed, path);
    }
    return ERROR_SUCCESS;
}

class ConfigurationManagerNotifications : public UsbNotifications {
public:
    ConfigurationManagerNotifications(HCMNOTIFICATION registered, Unregister unregisterIt)
        : registration(registered), unregister(unregisterIt) {}
    ~ConfigurationManagerNotifications() override {
        // Returns when no notification is running any more.
        unregister(registration);
    }

private:
    const HCMNOTIFICATION registration;
    const Unregister unregister;
};

}  // namespace

std::unique_ptr<UsbNotifications> NotifyByConfigurationManager(UsbEventQueue& queue,
                                                               std::string& problem) {
    // Stays loaded: the system's own libraries use it.
    const HMODULE manager = LoadLibraryExW(L"cfgmgr32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (manager == nullptr) {
        return nullptr;
    }
    const auto registerIt = Find<Register>(manager, "CM_Register_Notification");
    const auto unregister = Find<Unregister>(manager, "CM_Unregister_Notification");
    if (registerIt == nullptr || unregister == nullptr) {
        return nullptr;
    }
    CM_NOTIFY_FILTER filter{};
    filter.cbSize = sizeof filter;
    filter.FilterType = CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE;
    filter.u.DeviceInterface.ClassGuid = kUsbPrinterClass;
    HCMNOTIFICATION registration = nullptr;
    const CONFIGRET result = registerIt(&filter, &queue, TakeNotification, &registration);
    if (result != CR_SUCCESS) {
        problem = SystemProblem("CM_Register_Notification", result);
        return nullptr;
    }
    return std::make_unique<ConfigurationManagerNotifications>(registration, unregister);
}

void PutUsbEvent(UsbEventQueue& queue, UsbEvent::Kind kind, std::wstring_view path) {
    // Called by the system: no exception may leave.
    try {
        if (const std::optional<UsbPrinter> printer = UsbPrinterOfPath(path)) {
            queue.Put({kind, *printer});
        }
    } catch (const std::bad_alloc&) {
        queue.Lose();
    }
}

std::string SystemProblem(std::string_view operation, DWORD error) {
    return std::string(operation) + " failed: error " + std::to_string(error);
}

}  // namespace PrinterDiscoverAPI
