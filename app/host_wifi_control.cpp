#include "app/host_wifi_control.h"

#include <array>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>

#include "app/host_function.h"

namespace App {

namespace {

template <class Function>
Function* Find(const char* name) {
    return reinterpret_cast<Function*>(HostFunction("PrinterDiscoverAPI", name));
}

// What the work gives; false when that takes too long: then it is left behind.
bool InTime(std::function<bool()> work, std::chrono::milliseconds patience) {
    const auto done = std::make_shared<std::promise<bool>>();
    std::future<bool> result = done->get_future();
    std::thread([work = std::move(work), done] { done->set_value(work()); }).detach();
    return result.wait_for(patience) == std::future_status::ready && result.get();
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

void BreakOffHostWifi(std::chrono::milliseconds patience) {
    if (const auto breakOff = Find<decltype(PrinterWifiBreakOff)>("PrinterWifiBreakOff")) {
        InTime(
            [breakOff] {
                breakOff();
                return true;
            },
            patience);
    }
}

}  // namespace App
