// SPDX-License-Identifier: Apache-2.0

#include "app/library/host_wifi_control.h"

#include <array>
#include <exception>
#include <functional>
#include <utility>

#include "app/library/host_function.h"
#include "app/program/messages.h"

namespace App {

namespace {

template <class Function>
Function* Find(const char* name) {
    return reinterpret_cast<Function*>(HostFunction("PrinterDiscoverAPI", name));
}

// Returns the result of `work`; false, and abandons the work, when it takes too long.
bool InTime(std::function<bool()> work, std::chrono::milliseconds patience) {
    try {
        return AwaitRegardless<bool>(
            std::move(work), [] {}, patience);
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

HostWifiProblem LastHostWifiProblem() {
    const auto problem = Find<decltype(PrinterWifiProblem)>("PrinterWifiProblem");
    if (problem == nullptr) {
        return {};
    }
    std::array<char, 512> reason{};
    const int kind = problem(reason.data(), reason.size());
    return {kind, reason.data()};
}

void RememberHostWifi() {
    if (const auto remember = Find<decltype(PrinterWifiRemember)>("PrinterWifiRemember")) {
        remember();
    }
}

bool GoBackWithHostWifi(const std::string& network, std::chrono::milliseconds patience) {
    const auto goBack = Find<decltype(PrinterWifiGoBack)>("PrinterWifiGoBack");
    return goBack != nullptr &&
           InTime([goBack, network] { return goBack(network.c_str()) != 0; }, patience);
}

void BreakOffHostWifi() {
    // The library gives the system's service 8 s to undo a join.
    constexpr std::chrono::seconds patience{10};
    const auto breakOff = Find<decltype(PrinterWifiBreakOff)>("PrinterWifiBreakOff");
    const auto work = [breakOff] {
        breakOff();
        return true;
    };
    if (breakOff != nullptr && !InTime(work, patience)) {
        Warn(
            "the attempt to join a network is not undone yet: this computer's Wi-Fi service does "
            "not answer.");
    }
}

}  // namespace App
