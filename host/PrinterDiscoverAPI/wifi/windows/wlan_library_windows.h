// SPDX-License-Identifier: Apache-2.0

#pragma once

// wlanapi.h needs windows.h first.
#include "platform/os.h"

#include <wlanapi.h>

#include <string>

namespace Host {

// The functions of the system's Wi-Fi library, which is missing on some Windows systems.
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
    decltype(&WlanGetProfileList) getProfileList;
    decltype(&WlanConnect) connect;
    decltype(&WlanDisconnect) disconnect;
    decltype(&WlanReasonCodeToString) reasonCodeToString;
};

// Returns the library, loaded at the first call. Throws WifiProblem when it is missing.
const WlanLibrary& TheWlanLibrary();

// Throws WifiProblem with the error in words, unless `error` is success.
void RequireWlan(const char* operation, DWORD error);

}  // namespace Host
