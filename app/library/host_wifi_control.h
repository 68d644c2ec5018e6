#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "app/program/settings.h"
#include "app/running/awaiting.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiControl.h"

namespace App {

// Why an operation of the host's Wi-Fi brought nothing. Libraries of other vendors may not tell.
struct HostWifiProblem {
    int kind = PRINTER_WIFI_DONE;
    std::string reason;

    // What was asked is not known, as against known to be nothing.
    bool HidesTheAnswer() const {
        return kind != PRINTER_WIFI_DONE && kind != PRINTER_WIFI_NO_ADAPTER;
    }
};

// Of the calling thread's last operation.
HostWifiProblem LastHostWifiProblem();

// Remembers the connection that the host has, for GoBackWithHostWifi.
void RememberHostWifi();

// Sends the host back to it, unless the host is on another network than `network` by now, which the
// program has joined. Whether it is on its way. Takes up to `patience`.
bool GoBackWithHostWifi(const std::string& network, std::chrono::milliseconds patience);

// Undoes what the program has begun with the host's Wi-Fi and not brought to its end; waits for
// that up to 10 s, and warns when it is not done by then.
void BreakOffHostWifi();

// As Await, for work that takes the host to a network: what it has begun is undone when the user
// asks the program to end, or when the work takes too long.
template <class Result>
Result AwaitOrBreakOff(const Settings& settings, const std::string& what,
                       std::function<Result()> work, Cancellation::Clock::duration limit) {
    try {
        return Await(settings, what, std::move(work), limit);
    } catch (const Interrupted&) {
        BreakOffHostWifi();
        throw;
    } catch (const TimedOut&) {
        BreakOffHostWifi();
        throw;
    }
}

}  // namespace App
