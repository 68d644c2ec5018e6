#pragma once

// The printers on USB, as the system lets this process ask them.

#include <cstdint>
#include <vector>

#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

struct UsbLook {
    int result;  // GetDeviceInfoByUsb's
    std::vector<UsbPrinter> printers;
};

// The devices of that maker and product that have a printer interface, by their place; at most
// `most` of them. They are asked side by side. Each has a second for its answers, and all together
// four.
UsbLook LookForUsbPrinters(std::uint16_t productId, std::uint16_t vendorId, std::size_t most);

}  // namespace Driverless
