// SPDX-License-Identifier: Apache-2.0

// Links to the installed library by name, runs a scan with the vendor list that its argument names,
// and prints each printer once it is reported.

#include <DeviceDiscover/DeviceDiscover.h>
#include <host/PrinterUtil/vendor_list.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace sdk = PrinterDeviceDiscoverSdk;

namespace {

std::atomic<int> found = 0;

int Report(const sdk::DeviceInfo* device) {
    std::printf("%.64s %.32s\n", device->deviceSN, device->modelID);
    ++found;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: consumer VENDOR_LIST\n");
        return 2;
    }
    PrinterUtil::UseVendorList(argv[1]);
    auto& scan = sdk::DiscoverScanInterface::GetInstance();
    if (const int result = scan.StartDeviceScan({Report, 1}); result != 0) {
        std::fprintf(stderr, "consumer: StartDeviceScan: %d\n", result);
        return 3;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (found == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const int stopped = sdk::StopDeviceScan();
    std::printf("stopped with %d\n", stopped);
    return found > 0 && stopped == 0 ? 0 : 1;
}
