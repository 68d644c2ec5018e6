// SPDX-License-Identifier: Apache-2.0

// Shows the printers that are plugged in and the networks that each sees, then those that are
// plugged in during the next ten seconds.

#include <DeviceDiscover/DeviceDiscover.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <vector>

namespace sdk = PrinterDeviceDiscoverSdk;

namespace {

void ShowNetworks(const sdk::DeviceInfo& printer) {
    std::vector<sdk::WifiConfigInfo> networks;
    const int result =
        sdk::DiscoverUsbInterface::GetInstance().GetUSBWifiScan(printer, networks, 0);
    if (result != 0) {
        std::printf("  networks: %d\n", result);
    }
    for (const sdk::WifiConfigInfo& network : networks) {
        std::printf("  %.128s, signal %.0f\n", network.ssid, static_cast<double>(network.rssi));
    }
}

int ShowPrinters() {
    std::vector<sdk::DeviceInfo> printers;
    try {
        const int result = sdk::DiscoverUsbInterface::GetInstance().GetDeviceInfoByUsb(printers);
        if (result != 0) {
            std::printf("no printer on USB (%d)\n", result);
        }
    } catch (const std::out_of_range&) {
        std::fprintf(stderr, "usb: the vendor list has a USB identifier that is too short\n");
        return 3;
    }
    for (const sdk::DeviceInfo& printer : printers) {
        std::printf("%.64s, vendor %.32s\n", printer.deviceSN, printer.modelID);
        ShowNetworks(printer);
    }
    return 0;
}

// Called on a thread of the library's own, a second after the printer was plugged in.
int ReportArrival(const sdk::DeviceInfo* device) noexcept {
    std::printf("plugged in: %.64s\n", device->deviceSN);
    return 0;
}

}  // namespace

int main() {
    if (const int status = ShowPrinters(); status != 0) {
        return status;
    }
    // Start and stop belong on one thread.
    auto& usb = sdk::DiscoverUsbInterface::GetInstance();
    usb.StartDeviceMonitor({ReportArrival, 0});
    std::this_thread::sleep_for(std::chrono::seconds(10));
    usb.StopDeviceMonitor();
    return 0;
}
