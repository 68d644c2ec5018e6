// SPDX-License-Identifier: Apache-2.0

// The USB printers that are installed on this computer, and whether each is known to be on the
// network too.

#include <DeviceDiscover/DeviceDiscover.h>

#include <cstdio>
#include <vector>

namespace sdk = PrinterDeviceDiscoverSdk;

int main() {
    std::vector<sdk::DeviceUsbInfo> printers;
    sdk::DiscoverUsbInterface::GetInstance().GetDeviceNoConfigNet(printers);  // always 0
    for (const sdk::DeviceUsbInfo& printer : printers) {
        std::printf("%.64s: %s\n", printer.deviceSN,
                    printer.isNetConfigured ? "on the network too" : "not known on the network");
    }
    return printers.empty() ? 1 : 0;
}
