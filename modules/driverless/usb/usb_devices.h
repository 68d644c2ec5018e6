// SPDX-License-Identifier: Apache-2.0

#pragma once

// The printers on USB that this process may query.

#include <cstdint>
#include <vector>

#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

struct UsbLook {
    int result;  // GetDeviceInfoByUsb's
    std::vector<UsbPrinter> printers;
};

// The devices with these ids that have a printer interface, sorted by place; at most `most`. They
// are queried in parallel. Each has one second for its answers, and all together have four.
UsbLook LookForUsbPrinters(std::uint16_t productId, std::uint16_t vendorId, std::size_t most);

}  // namespace Driverless
