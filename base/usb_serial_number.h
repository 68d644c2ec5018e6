// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Base {

// Chooses the serial number of a USB device from its USB descriptor or else its IEEE 1284 device
// id; either may be empty. The descriptor is preferred: the system distinguishes devices by it.
// Makers write one device id for a whole model, so some of its serial numbers are wrong.
std::string UsbSerialNumber(const std::string& ofDescriptor, const std::string& ofDeviceId);

}  // namespace Base
