// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/usb/scripted_cfgmgr32_windows.h"

#include <cfgmgr32.h>

#include <cstring>
#include <cwchar>
#include <mutex>
#include <vector>

namespace {

struct Registration {
    GUID interfaceClass;
    PVOID context;
    PCM_NOTIFY_CALLBACK callback;
};

std::mutex mutex;
std::vector<Registration*> registrations;
CONFIGRET result = CR_SUCCESS;

}  // namespace

extern "C" {

CONFIGRET WINAPI RegisterNotification(PCM_NOTIFY_FILTER filter, PVOID context,
                                      PCM_NOTIFY_CALLBACK callback, PHCMNOTIFICATION handle) {
    const std::lock_guard lock(mutex);
    if (filter->cbSize != sizeof *filter || filter->Flags != 0 ||
        filter->FilterType != CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE) {
        return CR_INVALID_DATA;
    }
    if (result == CR_SUCCESS) {
        auto* const registration =
            new Registration{filter->u.DeviceInterface.ClassGuid, context, callback};
        registrations.push_back(registration);
        *handle = reinterpret_cast<HCMNOTIFICATION>(registration);
    }
    return result;
}

CONFIGRET WINAPI UnregisterNotification(HCMNOTIFICATION handle) {
    const std::lock_guard lock(mutex);
    auto* const registration = reinterpret_cast<Registration*>(handle);
    if (std::erase(registrations, registration) != 1) {
        return CR_INVALID_DATA;
    }
    delete registration;
    return CR_SUCCESS;
}

int ScriptedNotifyAll(int hasCome, const wchar_t* path) {
    const std::lock_guard lock(mutex);
    const std::size_t size = sizeof(CM_NOTIFY_EVENT_DATA) + std::wcslen(path) * sizeof(wchar_t);
    std::vector<std::byte> room(size);
    auto* data = reinterpret_cast<CM_NOTIFY_EVENT_DATA*>(room.data());
    data->FilterType = CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE;
    std::wcscpy(data->u.DeviceInterface.SymbolicLink, path);
    for (Registration* registration : registrations) {
        data->u.DeviceInterface.ClassGuid = registration->interfaceClass;
        registration->callback(reinterpret_cast<HCMNOTIFICATION>(registration),
                               registration->context,
                               hasCome != 0 ? CM_NOTIFY_ACTION_DEVICEINTERFACEARRIVAL
                                            : CM_NOTIFY_ACTION_DEVICEINTERFACEREMOVAL,
                               data, static_cast<DWORD>(size));
    }
    return static_cast<int>(registrations.size());
}

void ScriptedSetResult(DWORD next) {
    const std::lock_guard lock(mutex);
    result = next;
}
}
