// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "app/running/awaiting.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"

namespace App {

// Why an operation of the host's Wi-Fi had no result. A replacement of the library may not tell.
struct HostWifiProblem {
    int kind = PRINTER_WIFI_DONE;
    std::string reason;

    // True when the answer is unknown; false when it is known, even if empty.
    bool HidesTheAnswer() const {
        return kind != PRINTER_WIFI_DONE && kind != PRINTER_WIFI_NO_ADAPTER;
    }
};

// The problem of the calling thread's last operation.
HostWifiProblem LastHostWifiProblem();

// Remembers the host's connection for GoBackWithHostWifi.
void RememberHostWifi();

// Starts the return to the remembered connection, unless the host is now on a network other than
// `network`, which the program has joined. Returns whether the host is returning. Takes up to
// `patience`.
bool GoBackWithHostWifi(const std::string& network, std::chrono::milliseconds patience);

// Undoes the program's unfinished operations on the host's Wi-Fi. Waits up to 10 s, and warns if
// they are not undone by then.
void BreakOffHostWifi();

// Await for work that joins the host to a network: undoes the join when the user asks the program
// to end, or when the work takes too long.
template <class Result>
Result AwaitOrBreakOff(const std::string& what, std::function<Result()> work,
                       Cancellation::Clock::duration limit) {
    try {
        return Await(what, std::move(work), limit);
    } catch (const Interrupted&) {
        BreakOffHostWifi();
        throw;
    } catch (const TimedOut&) {
        BreakOffHostWifi();
        throw;
    }
}

}  // namespace App
