// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/wifi/scripted_wlanapi_windows.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <functional>
#include <thread>

using namespace ScriptedWlan;

namespace {

constexpr std::chrono::milliseconds kStep{80};
constexpr DWORD kAttemptsFailed = 0x38002;
constexpr DWORD kNotAvailable = 0x2800B;
constexpr DWORD kUnknownReason = 0x12345;
constexpr DWORD kPassPhraseMismatch = 0x48014;
constexpr DWORD kHasProfile = 2;
constexpr USHORT kPrivacy = 0x10;

struct Registration {
    HANDLE handle;
    WLAN_NOTIFICATION_CALLBACK callback;
    PVOID context;
};

// Held while a notification is being delivered: who unregisters waits for its end.
std::mutex deliveries;
std::vector<Registration> registrations;

// Never destroyed: notifications are on their way while the process ends.
Service& service = *new Service;

using Lock = std::lock_guard<std::recursive_mutex>;

GUID GuidOf(const Adapter& adapter) {
    return {0x5C81A9ED, 0x1234, 0x4321, {0, 0, 0, 0, 0, 0, 0, adapter.number}};
}

Adapter* Find(const GUID& guid) {
    const auto found =
        std::find_if(service.adapters.begin(), service.adapters.end(),
                     [&guid](const Adapter& adapter) { return GuidOf(adapter) == guid; });
    return found == service.adapters.end() ? nullptr : &*found;
}

// The error of the next operation.
DWORD NextError() {
    const Lock lock(service.mutex);
    if (service.endAfter > 0 && --service.endAfter == 0) {
        service.error = RPC_S_SERVER_UNAVAILABLE;
    }
    return service.error;
}

template <class T>
T* Allocate(std::size_t size = sizeof(T)) {
    ++service.blocks;
    return static_cast<T*>(std::calloc(1, size));
}

DOT11_SSID SsidOf(const std::string& name) {
    DOT11_SSID ssid{};
    ssid.uSSIDLength = static_cast<ULONG>(name.size());
    std::memcpy(ssid.ucSSID, name.data(), std::min(name.size(), sizeof ssid.ucSSID));
    return ssid;
}

std::string NameOf(const DOT11_SSID& ssid) {
    return {reinterpret_cast<const char*>(ssid.ucSSID), ssid.uSSIDLength};
}

void Deliver(const GUID& adapter, DWORD source, DWORD code, void* data, std::size_t size) {
    const std::lock_guard lock(deliveries);
    if (service.error != ERROR_SUCCESS) {
        return;  // a service that has ended says nothing
    }
    for (const Registration& registration : registrations) {
        WLAN_NOTIFICATION_DATA notification{source, code, adapter, static_cast<DWORD>(size), data};
        registration.callback(&notification, registration.context);
    }
}

void Notify(const GUID& adapter, WLAN_NOTIFICATION_ACM code) {
    // Of other matters and other adapters, first.
    Deliver(adapter, WLAN_NOTIFICATION_SOURCE_MSM, code, nullptr, 0);
    GUID other = adapter;
    other.Data1 = 0;
    Deliver(other, WLAN_NOTIFICATION_SOURCE_ACM, code, nullptr, 0);
    Deliver(adapter, WLAN_NOTIFICATION_SOURCE_ACM, code, nullptr, 0);
}

void NotifyOfJoining(const GUID& adapter, WLAN_NOTIFICATION_ACM code, const std::string& name,
                     DWORD reason) {
    WLAN_CONNECTION_NOTIFICATION_DATA data{};
    data.dot11Ssid = SsidOf(name);
    data.wlanReasonCode = reason;
    Deliver(adapter, WLAN_NOTIFICATION_SOURCE_ACM, code, &data, sizeof data);
}

void Later(int steps, std::function<void()> work) {
    std::thread([steps, work = std::move(work)] {
        std::this_thread::sleep_for(steps * kStep);
        work();
    }).detach();
}

void Reveal(const GUID& guid, const std::string& asked) {
    const Lock lock(service.mutex);
    Adapter* adapter = Find(guid);
    if (adapter == nullptr) {
        return;
    }
    for (Point& point : adapter->points) {
        if (point.seen == Seen::afterScan ||
            (point.seen == Seen::whenAsked && point.name == asked)) {
            point.seen = Seen::atOnce;
        }
    }
}

std::string KeyIn(const std::wstring& profile) {
    const std::size_t start = profile.find(L"<keyMaterial>");
    if (start == std::wstring::npos) {
        return {};
    }
    std::string key;
    for (std::size_t at = start + 13; profile[at] != L'<'; ++at) {
        key += static_cast<char>(profile[at]);
    }
    return key;
}

bool IsUnended(Join outcome) {
    return outcome == Join::onlyAttempt || outcome == Join::attemptEnds ||
           outcome == Join::supplanted;
}

void Begin(Adapter& adapter, const std::string& name) {
    adapter.joined = -1;
    adapter.joining = name;
    adapter.state = wlan_interface_state_associating;
    NotifyOfJoining(GuidOf(adapter), wlan_notification_acm_connection_start, name, 0);
}

// What becomes of an attempt to join.
void Conclude(const GUID& guid, const Connection& connection) {
    const Lock lock(service.mutex);
    Adapter* adapter = Find(guid);
    const auto point = std::find_if(adapter->points.begin(), adapter->points.end(),
                                    [&](const Point& one) { return one.name == connection.name; });
    // Another network is being joined by someone else.
    NotifyOfJoining(guid, wlan_notification_acm_connection_complete, "Another", 0);
    NotifyOfJoining(guid, wlan_notification_acm_connection_attempt_fail, "Another", 1);
    const bool isSaved = connection.mode == wlan_connection_mode_profile;
    const Join outcome = point == adapter->points.end() ? Join::notAvailable : point->join;
    DWORD reason = 0;
    if (!isSaved && outcome == Join::joins && KeyIn(connection.profile) != point->passPhrase) {
        reason = kPassPhraseMismatch;
    } else if (outcome == Join::notAvailable || IsUnended(outcome)) {
        reason = kNotAvailable;
    } else if (outcome == Join::unknown) {
        reason = kUnknownReason;
    } else if (outcome == Join::hangs) {
        return;
    } else if (outcome == Join::adapterGoes) {
        service.adapters.clear();
        Notify(guid, wlan_notification_acm_interface_removal);
        return;
    }
    if (reason != 0) {
        NotifyOfJoining(guid, wlan_notification_acm_connection_attempt_fail, connection.name,
                        reason);
        if (!IsUnended(outcome)) {
            NotifyOfJoining(guid, wlan_notification_acm_connection_complete, connection.name,
                            kAttemptsFailed);
        }
        if (outcome == Join::supplanted) {
            Begin(*adapter, "Another");
        } else if (outcome != Join::onlyAttempt) {
            adapter->joining.clear();
            adapter->state = wlan_interface_state_disconnected;
        }
        return;
    }
    adapter->joining.clear();
    adapter->joined = static_cast<int>(point - adapter->points.begin());
    adapter->state = wlan_interface_state_connected;
    NotifyOfJoining(guid, wlan_notification_acm_connection_complete, connection.name, 0);
}

std::vector<const Point*> VisiblePoints(const Adapter& adapter) {
    std::vector<const Point*> visible;
    for (const Point& point : adapter.points) {
        if (point.seen != Seen::afterScan && point.seen != Seen::never) {
            visible.push_back(&point);
        }
    }
    return visible;
}

std::string ShownName(const Point& point) {
    return point.seen == Seen::whenAsked ? std::string() : point.name;
}

void FillAddress(DOT11_MAC_ADDRESS& address, const Point& point) {
    const unsigned char bytes[] = {0x00, 0x23, 0xF8, 0x7E, 0xAB, point.lastOfAddress};
    std::memcpy(address, bytes, sizeof bytes);
}

WLAN_RADIO_STATE* RadioStateOf(const Adapter& adapter) {
    auto* state = Allocate<WLAN_RADIO_STATE>();
    state->dwNumberOfPhys = 2;
    for (DWORD index = 0; index < 2; ++index) {
        state->PhyRadioState[index] = {
            index, adapter.softwareOff ? dot11_radio_state_off : dot11_radio_state_on,
            adapter.hardwareOff ? dot11_radio_state_off : dot11_radio_state_on};
    }
    return state;
}

WLAN_CONNECTION_ATTRIBUTES* ConnectionOf(const Adapter& adapter) {
    auto* connection = Allocate<WLAN_CONNECTION_ATTRIBUTES>();
    connection->isState = adapter.state;
    if (adapter.joined < 0) {
        connection->wlanAssociationAttributes.dot11Ssid = SsidOf(adapter.joining);
        connection->wlanAssociationAttributes.dot11BssType = dot11_BSS_type_infrastructure;
        return connection;
    }
    const Point& point = adapter.points[static_cast<std::size_t>(adapter.joined)];
    // A profile that is not saved bears its network's name.
    const std::wstring profile =
        point.savedAs.empty() ? std::wstring(point.name.begin(), point.name.end()) : point.savedAs;
    std::wcsncpy(connection->strProfileName, profile.c_str(), 255);
    connection->wlanAssociationAttributes.dot11Ssid = SsidOf(point.name);
    connection->wlanAssociationAttributes.dot11BssType = point.type;
    FillAddress(connection->wlanAssociationAttributes.dot11Bssid, point);
    return connection;
}

}  // namespace

extern "C" {

Service& ScriptedWlanService() {
    return service;
}

DWORD WINAPI ScriptedOpenHandle(DWORD version, PVOID, PDWORD negotiated, PHANDLE handle) {
    if (version != 2 || negotiated == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    if (service.openError != ERROR_SUCCESS) {
        return service.openError;
    }
    if (const DWORD error = NextError()) {
        return error;
    }
    *negotiated = version;
    *handle = std::calloc(1, 1);
    ++service.handles;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedCloseHandle(HANDLE handle, PVOID) {
    std::free(handle);
    --service.handles;
    return ERROR_SUCCESS;
}

VOID WINAPI ScriptedFreeMemory(PVOID memory) {
    if (memory != nullptr) {
        --service.blocks;
        std::free(memory);
    }
}

DWORD WINAPI ScriptedEnumInterfaces(HANDLE, PVOID, PWLAN_INTERFACE_INFO_LIST* result) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const std::size_t count = service.adapters.size();
    auto* list = Allocate<WLAN_INTERFACE_INFO_LIST>(sizeof(WLAN_INTERFACE_INFO_LIST) +
                                                    count * sizeof(WLAN_INTERFACE_INFO));
    for (const Adapter& adapter : service.adapters) {
        WLAN_INTERFACE_INFO& info = list->InterfaceInfo[list->dwNumberOfItems++];
        info.InterfaceGuid = GuidOf(adapter);
        std::wcsncpy(info.strInterfaceDescription, adapter.description.c_str(), 255);
        info.isState = adapter.state;
    }
    *result = list;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedQueryInterface(HANDLE, const GUID* guid, WLAN_INTF_OPCODE what, PVOID,
                                    PDWORD size, PVOID* data, PWLAN_OPCODE_VALUE_TYPE) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const Adapter* adapter = Find(*guid);
    if (adapter == nullptr) {
        return ERROR_NOT_FOUND;
    }
    switch (what) {
        case wlan_intf_opcode_radio_state:
            *size = sizeof(WLAN_RADIO_STATE);
            *data = RadioStateOf(*adapter);
            return ERROR_SUCCESS;
        case wlan_intf_opcode_current_connection:
            if (adapter->joined < 0 && (adapter->joining.empty() || !adapter->tellsJoining)) {
                return ERROR_INVALID_STATE;
            }
            *size = sizeof(WLAN_CONNECTION_ATTRIBUTES);
            *data = ConnectionOf(*adapter);
            return ERROR_SUCCESS;
        case wlan_intf_opcode_interface_state:
            *size = sizeof(WLAN_INTERFACE_STATE);
            *data = Allocate<WLAN_INTERFACE_STATE>();
            *static_cast<WLAN_INTERFACE_STATE*>(*data) = adapter->state;
            return ERROR_SUCCESS;
        default:
            return ERROR_NOT_SUPPORTED;
    }
}

DWORD WINAPI ScriptedRegisterNotification(HANDLE handle, DWORD source, WINBOOL,
                                          WLAN_NOTIFICATION_CALLBACK callback, PVOID context, PVOID,
                                          PDWORD) {
    const std::lock_guard lock(deliveries);
    const auto removed = std::erase_if(
        registrations, [handle](const Registration& one) { return one.handle == handle; });
    service.registrations -= static_cast<int>(removed);
    if (source == WLAN_NOTIFICATION_SOURCE_NONE) {
        return ERROR_SUCCESS;
    }
    if (const DWORD error = NextError()) {
        return error;
    }
    registrations.push_back({handle, callback, context});
    ++service.registrations;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedScan(HANDLE, const GUID* guid, const PDOT11_SSID ssid, const PWLAN_RAW_DATA,
                          PVOID) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const Adapter* adapter = Find(*guid);
    ++service.scans;
    if (adapter == nullptr || adapter->scanError != ERROR_SUCCESS) {
        return adapter == nullptr ? ERROR_NOT_FOUND : adapter->scanError;
    }
    const std::string asked = ssid == nullptr ? std::string() : NameOf(*ssid);
    if (adapter->scans == Scans::work) {
        Later(adapter->scanSteps, [id = *guid, asked] {
            Reveal(id, asked);
            Notify(id, wlan_notification_acm_scan_complete);
        });
    } else if (adapter->scans == Scans::fail) {
        Later(1, [id = *guid] { Notify(id, wlan_notification_acm_scan_fail); });
    }
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedGetNetworkBssList(HANDLE, const GUID* guid, const PDOT11_SSID, DOT11_BSS_TYPE,
                                       WINBOOL, PVOID, PWLAN_BSS_LIST* result) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const Adapter* adapter = Find(*guid);
    if (adapter == nullptr || service.listError != ERROR_SUCCESS) {
        return adapter == nullptr ? ERROR_NOT_FOUND : service.listError;
    }
    const std::vector<const Point*> points = VisiblePoints(*adapter);
    std::size_t size = sizeof(WLAN_BSS_LIST) + points.size() * sizeof(WLAN_BSS_ENTRY);
    std::size_t elementsAt = size;
    for (const Point* point : points) {
        size += point->elements.size();
    }
    auto* list = Allocate<WLAN_BSS_LIST>(size);
    list->dwTotalSize = static_cast<DWORD>(size);
    for (const Point* point : points) {
        WLAN_BSS_ENTRY& entry = list->wlanBssEntries[list->dwNumberOfItems++];
        const auto start = static_cast<std::size_t>(reinterpret_cast<char*>(&entry) -
                                                    reinterpret_cast<char*>(list));
        entry.dot11Ssid = SsidOf(ShownName(*point));
        FillAddress(entry.dot11Bssid, *point);
        entry.dot11BssType = point->type;
        entry.uLinkQuality = point->quality;
        entry.usCapabilityInformation = point->isPrivate ? kPrivacy : 0;
        entry.ulIeOffset = static_cast<ULONG>(elementsAt - start);
        entry.ulIeSize = static_cast<ULONG>(point->elements.size());
        std::memcpy(reinterpret_cast<char*>(list) + elementsAt, point->elements.data(),
                    point->elements.size());
        elementsAt += point->elements.size();
        if (service.spoilsLists) {
            entry.ulIeOffset = list->dwNumberOfItems % 2 == 0 ? 0xFFFFFFF0 : entry.ulIeOffset;
            entry.ulIeSize = 0xFFFFFFF0;
        }
    }
    *result = list;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedGetAvailableNetworkList(HANDLE, const GUID* guid, DWORD, PVOID,
                                             PWLAN_AVAILABLE_NETWORK_LIST* result) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const Adapter* adapter = Find(*guid);
    if (adapter == nullptr) {
        return ERROR_NOT_FOUND;
    }
    const std::vector<const Point*> points = VisiblePoints(*adapter);
    auto* list = Allocate<WLAN_AVAILABLE_NETWORK_LIST>(
        sizeof(WLAN_AVAILABLE_NETWORK_LIST) + points.size() * sizeof(WLAN_AVAILABLE_NETWORK));
    for (const Point* point : points) {
        WLAN_AVAILABLE_NETWORK& network = list->Network[list->dwNumberOfItems++];
        network.dot11Ssid = SsidOf(ShownName(*point));
        std::wcsncpy(network.strProfileName, point->savedAs.c_str(), 255);
        network.dwFlags = point->savedAs.empty() ? 0 : kHasProfile;
    }
    *result = list;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedGetProfileList(HANDLE, const GUID* guid, PVOID,
                                    PWLAN_PROFILE_INFO_LIST* result) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    const Adapter* adapter = Find(*guid);
    if (adapter == nullptr) {
        return ERROR_NOT_FOUND;
    }
    auto* list = Allocate<WLAN_PROFILE_INFO_LIST>(
        sizeof(WLAN_PROFILE_INFO_LIST) + adapter->points.size() * sizeof(WLAN_PROFILE_INFO));
    for (const Point& point : adapter->points) {
        if (!point.savedAs.empty()) {
            std::wcsncpy(list->ProfileInfo[list->dwNumberOfItems++].strProfileName,
                         point.savedAs.c_str(), 255);
        }
    }
    *result = list;
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedConnect(HANDLE, const GUID* guid, const PWLAN_CONNECTION_PARAMETERS parameters,
                             PVOID) {
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    if (Find(*guid) == nullptr) {
        return ERROR_NOT_FOUND;
    }
    if (parameters->pDot11Ssid == nullptr ||
        parameters->dot11BssType != dot11_BSS_type_infrastructure ||
        parameters->strProfile == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    const Connection connection{parameters->wlanConnectionMode, parameters->strProfile,
                                NameOf(*parameters->pDot11Ssid)};
    service.connections.push_back(connection);
    Later(0, [id = *guid, name = connection.name] {
        const Lock inner(service.mutex);
        if (Adapter* adapter = Find(id)) {
            Begin(*adapter, name);
        }
    });
    Later(1, [id = *guid, connection] { Conclude(id, connection); });
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedDisconnect(HANDLE, const GUID* guid, PVOID) {
    ++service.disconnections;
    if (const DWORD error = NextError()) {
        return error;
    }
    const Lock lock(service.mutex);
    if (Adapter* adapter = Find(*guid)) {
        adapter->joined = -1;
        adapter->joining.clear();
        adapter->state = wlan_interface_state_disconnected;
    }
    return ERROR_SUCCESS;
}

DWORD WINAPI ScriptedReasonCodeToString(DWORD reason, DWORD size, PWCHAR text, PVOID) {
    if (reason != kUnknownReason) {
        return ERROR_NOT_FOUND;
    }
    const Lock lock(service.mutex);
    std::wcsncpy(text, service.words.c_str(), size);
    return ERROR_SUCCESS;
}
}
