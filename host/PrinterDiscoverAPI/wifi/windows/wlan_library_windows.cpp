// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_library_windows.h"

#include "host/PrinterDiscoverAPI/wifi/wifi_service.h"

namespace Host {

namespace {

std::string DescribeError(const char* operation, DWORD error) {
    switch (error) {
        case ERROR_SERVICE_DOES_NOT_EXIST:
        case ERROR_SERVICE_DISABLED:
        case ERROR_SERVICE_NOT_ACTIVE:
            return "the system's Wi-Fi service is not running";
        case RPC_S_SERVER_UNAVAILABLE:
        case RPC_S_CALL_FAILED:
        case RPC_S_CALL_FAILED_DNE:
        case RPC_S_UNKNOWN_IF:
            return "the system's Wi-Fi service has ended";
        case ERROR_ACCESS_DENIED:
            return "Windows does not allow it; access to the location may be switched off";
        default:
            return std::string(operation) + " failed: error " + std::to_string(error);
    }
}

template <class Function>
void Find(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    if (function == nullptr) {
        throw WifiProblem(std::string("the system's Wi-Fi library lacks ") + name);
    }
}

WlanLibrary Load() {
    // Searched in the same place as an import. The library stays loaded.
    const HMODULE module =
        LoadLibraryExW(L"wlanapi.dll", nullptr,
                       LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (module == nullptr) {
        throw WifiProblem("the system has no Wi-Fi service", WifiProblem::Kind::kNotRunning);
    }
    WlanLibrary library{};
    Find(module, "WlanOpenHandle", library.openHandle);
    Find(module, "WlanCloseHandle", library.closeHandle);
    Find(module, "WlanFreeMemory", library.freeMemory);
    Find(module, "WlanEnumInterfaces", library.enumInterfaces);
    Find(module, "WlanQueryInterface", library.queryInterface);
    Find(module, "WlanRegisterNotification", library.registerNotification);
    Find(module, "WlanScan", library.scan);
    Find(module, "WlanGetNetworkBssList", library.getNetworkBssList);
    Find(module, "WlanGetAvailableNetworkList", library.getAvailableNetworkList);
    Find(module, "WlanGetProfileList", library.getProfileList);
    Find(module, "WlanConnect", library.connect);
    Find(module, "WlanDisconnect", library.disconnect);
    Find(module, "WlanReasonCodeToString", library.reasonCodeToString);
    return library;
}

}  // namespace

const WlanLibrary& TheWlanLibrary() {
    static const WlanLibrary library = Load();
    return library;
}

void RequireWlan(const char* operation, DWORD error) {
    if (error != ERROR_SUCCESS) {
        throw WifiProblem(DescribeError(operation, error), error == ERROR_SERVICE_NOT_ACTIVE
                                                               ? WifiProblem::Kind::kNotRunning
                                                               : WifiProblem::Kind::kFailed);
    }
}

}  // namespace Host
