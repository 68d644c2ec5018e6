#pragma once

#include <string>
#include <vector>

#include "host/PrinterAdapter/device_id.h"

namespace PrinterAdapter {

// The printer behind a USB printer port.
struct UsbPort {
    std::wstring name;  // USB001
    DeviceId id;        // empty where the device cannot be asked
};

// The ports of the USB printers that are plugged in. The serial number is that of the device
// identifier, else that by which the system tells devices of one model apart, unless the system has
// made that up itself.
std::vector<UsbPort> UsbPorts();

}  // namespace PrinterAdapter
