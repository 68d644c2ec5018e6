// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "base/device_id.h"

namespace PrinterAdapter {

// The printer behind a USB printer port.
struct UsbPort {
    std::wstring name;  // USB001
    Base::DeviceId id;  // empty if the device cannot be queried
};

// The ports of the plugged-in USB printers. The serial number comes from the device id, else from
// the device's instance id unless the system has generated that itself.
std::vector<UsbPort> UsbPorts();

}  // namespace PrinterAdapter
