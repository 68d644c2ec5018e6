#include "app/host_wifi_control.h"

#include <array>
#include <future>
#include <memory>
#include <thread>

#include "app/host_function.h"

namespace App {

namespace {

template <class Function>
Function* Find(const char* name) {
    return reinterpret_cast<Function*>(HostFunction("PrinterDiscoverAPI", name));
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

void BreakOffHostWifi(std::chrono::milliseconds patience) {
    const auto breakOff = Find<decltype(PrinterWifiBreakOff)>("PrinterWifiBreakOff");
    if (breakOff == nullptr) {
        return;
    }
    const auto done = std::make_shared<std::promise<void>>();
    std::future<void> isDone = done->get_future();
    std::thread([breakOff, done] {
        breakOff();
        done->set_value();
    }).detach();
    isDone.wait_for(patience);
}

}  // namespace App
