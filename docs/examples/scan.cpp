// SPDX-License-Identifier: Apache-2.0

// Looks for printers for three seconds, then asks for each whether it would take a job.

#include <DeviceDiscover/DeviceDiscover.h>

#include <chrono>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

namespace sdk = PrinterDeviceDiscoverSdk;

namespace {

struct Printers {
    std::mutex mutex;
    std::vector<sdk::DeviceInfo> found;
};

// Never destroyed: a report that has begun may still run when main returns.
Printers& ThePrinters() {
    static Printers& printers = *new Printers;
    return printers;
}

// Called on the vendors' threads, on several at once. The record lives only during the call.
int Report(const sdk::DeviceInfo* device) noexcept {
    Printers& printers = ThePrinters();
    const std::lock_guard lock(printers.mutex);
    printers.found.push_back(*device);
    return 0;
}

std::vector<sdk::DeviceInfo> Found() {
    const std::lock_guard lock(ThePrinters().mutex);
    return ThePrinters().found;
}

}  // namespace

int main() {
    auto& scan = sdk::DiscoverScanInterface::GetInstance();
    if (const int result = scan.StartDeviceScan({Report, 0}); result != 0) {
        std::fprintf(stderr, "scan: StartDeviceScan: %d\n", result);
        return 3;
    }
    std::this_thread::sleep_for(std::chrono::seconds(3));
    scan.StopDeviceScan();

    const std::vector<sdk::DeviceInfo> printers = Found();
    for (const sdk::DeviceInfo& printer : printers) {
        // Text fields are read with their bound: a vendor may fill a field to its last byte.
        const bool isReady = scan.GetDeviceConnectState(printer) == 1;
        std::printf("%.64s, vendor %.32s: %s\n", printer.deviceSN, printer.modelID,
                    isReady ? "ready" : "not ready");
    }
    return printers.empty() ? 1 : 0;
}
