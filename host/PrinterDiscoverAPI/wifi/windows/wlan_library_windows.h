#pragma once

// The Wi-Fi service's header stands on the system's own.
#include "platform/os.h"

#include <wlanapi.h>

#include <string>

namespace Host {

// The operations of the system's Wi-Fi library, which not every Windows has.
struct WlanLibrary {
    decltype(&WlanOpenHandle) openHandle;
    decltype(&WlanCloseHandle) closeHandle;
    decltype(&WlanFreeMemory) freeMemory;
    decltype(&WlanEnumInterfaces) enumInterfaces;
    decltype(&WlanQueryInterface) queryInterface;
    decltype(&WlanRegisterNotification) registerNotification;
    decltype(&WlanScan) scan;
    decltype(&WlanGetNetworkBssList) getNetworkBssList;
    decltype(&WlanGetAvailableNetworkList) getAvailableNetworkList;
    decltype(&WlanConnect) connect;
    decltype(&WlanDisconnect) disconnect;
    decltype(&WlanReasonCodeToString) reasonCodeToString;
};

// The library, loaded at the first call. Throws WifiProblem when there is none.
const WlanLibrary& TheWlanLibrary();

// Throws WifiProblem, in words, unless `error` says success.
void RequireWlan(const char* operation, DWORD error);

}  // namespace Host
