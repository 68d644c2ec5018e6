// SPDX-License-Identifier: Apache-2.0

#pragma once

// The Wi-Fi library that stands for the system's, and what a test tells it. Both sides are built
// alike and share their run-time library.

#include "platform/os.h"

#include <wlanapi.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace ScriptedWlan {

// What joining an access point with the right pass phrase comes to.
enum class Join {
    joins,
    notAvailable,  // its attempt fails because the network is not there
    unknown,       // it fails for a reason that only the library has words for
    onlyAttempt,   // its attempt fails, and nothing is said of the whole, which goes on
    attemptEnds,   // the same, and nothing goes on
    supplanted,    // the same, and someone else begins to join the network "Another"
    hangs,
    adapterGoes
};

// When an access point is seen.
enum class Seen { atOnce, afterScan, whenAsked, never };

struct Point {
    std::string name;
    unsigned char lastOfAddress = 1;
    ULONG quality = 50;
    std::string elements = {};
    bool isPrivate = false;
    DOT11_BSS_TYPE type = dot11_BSS_type_infrastructure;
    Seen seen = Seen::atOnce;
    std::string passPhrase = {};
    Join join = Join::joins;
    std::wstring savedAs = {};  // the name of a profile
};

enum class Scans { work, fail, endless };

struct Adapter {
    unsigned char number = 1;  // the last byte of its identifier
    std::wstring description = L"Scripted Wireless Adapter";
    WLAN_INTERFACE_STATE state = wlan_interface_state_disconnected;
    bool softwareOff = false;
    bool hardwareOff = false;
    Scans scans = Scans::work;
    int scanSteps = 1;  // of 80 ms
    DWORD scanError = ERROR_SUCCESS;
    std::vector<Point> points = {};
    int joined = -1;           // the index of a point
    std::string joining = {};  // the name of the network that is being joined
    bool tellsJoining = false;
};

// A call of WlanConnect.
struct Connection {
    WLAN_CONNECTION_MODE mode;
    std::wstring profile;
    std::string name;
};

struct Service {
    std::recursive_mutex mutex;
    std::vector<Adapter> adapters;
    std::vector<Connection> connections;
    std::wstring words = L"The driver is on fire.";  // for the reason that only the library knows
    DWORD openError = ERROR_SUCCESS;
    DWORD listError = ERROR_SUCCESS;           // of the list of access points
    std::atomic<DWORD> error = ERROR_SUCCESS;  // of every operation
    int endAfter = -1;                         // the service ends so many operations later
    std::atomic<int> handles = 0;
    std::atomic<int> registrations = 0;
    std::atomic<int> blocks = 0;  // of memory
    std::atomic<int> scans = 0;
    std::atomic<int> disconnections = 0;
    bool spoilsLists = false;  // information elements lie outside of their list
};

// The library's only one; exported as "ScriptedWlanService".
using TheService = Service& (*)();

}  // namespace ScriptedWlan
