// SPDX-License-Identifier: Apache-2.0

// scan_at_exit [MILLISECONDS]: ends while scans of printers run in three modules and scans of Wi-Fi
// networks in one of them, each with the threads that its script gives it.
//
// The modules stay mapped when they are released, as the application's own library keeps them: the
// threads run on while the process ends, and without that the system would unmap the code they run
// (it does so on Linux; on Windows the threads are gone before anything is released).

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "DeviceDiscover/DeviceDiscover.h"
#include "tests/support/recording_log.h"
#include "tests/support/scripted_vendors.h"

namespace {

std::atomic<long> received{0};
std::atomic<long> networks{0};

int OnDevice(const PrinterDeviceDiscoverSdk::DeviceInfo* device) {
    ++received;
    return device->modelID[0];
}

int OnNetwork(const PrinterDeviceDiscoverSdk::WifiConfigInfo* network) {
    ++networks;
    return network->ssid[0];
}

}  // namespace

int main(int count, char** arguments) {
    using ScriptedVendors::Vendor;
    const int milliseconds = count > 1 ? std::atoi(arguments[1]) : 5;
    RecordingLog::Discard();
    ScriptedVendors::KeepMapped(true);
    ScriptedVendors::Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b"),
                              Vendor("gamma", "scripted_all_c")});
    for (int start = 0; start < 2; ++start) {
        if (PrinterDeviceDiscoverSdk::DiscoverScanInterface::GetInstance().StartDeviceScan(
                {OnDevice, 1}) != 0) {
            return 3;
        }
        if (PrinterDeviceDiscoverSdk::DiscoverNetConnInterface::GetInstance().StartAPWifiScan(
                {OnNetwork, 1}) != 0) {
            return 5;
        }
    }
    // The process ends in the middle: the vendors are at it.
    for (int patience = 0; received < 10 || networks < 10; ++patience) {
        if (patience == 30000) {
            return 4;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return 0;
}
