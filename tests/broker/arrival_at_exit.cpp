// SPDX-License-Identifier: Apache-2.0

// arrival_at_exit MILLISECONDS: ends so long after the first of many printers that were plugged in
// at once is taken up: the threads of the others wake, bind the vendors, look them up and report
// while the process ends. Less than 0: ends while all of them still wait.

#include <chrono>
#include <cstdlib>
#include <thread>

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_host.h"
#include "tests/support/scripted_vendors.h"

int main(int count, char** arguments) {
    using namespace std::chrono_literals;
    const std::chrono::milliseconds later(count > 1 ? std::atoi(arguments[1]) : 5);
    const char* const ids[] = {"VID_1234&PID_0001", "VID_1234&PID_0002"};
    RecordingLog::Discard();
    ScriptedVendors::KeepMapped(true);
    ScriptedVendors::Support({{"alpha", {}, {}, ids[0], "scripted_all", {}},
                              {"beta", {}, {}, ids[1], "scripted_all_b", {}}});
    PrinterDeviceDiscoverSdk::DiscoverUsbInterface::GetInstance().StartDeviceMonitor(
        {[](const PrinterDeviceDiscoverSdk::DeviceInfo* device) { return int{device->modelID[0]}; },
         1});
    const auto first = std::chrono::steady_clock::now();
    for (int number = 0; number < 60; ++number) {
        const std::string id = ids[number % 2];
        if (ScriptedHost::Report(1, {id.begin(), id.end()}) != 0) {
            return 3;
        }
        std::this_thread::sleep_for(100us);
    }
    std::this_thread::sleep_until(first + 1000ms + later);
    return 0;
}
