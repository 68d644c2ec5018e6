// SPDX-License-Identifier: Apache-2.0

#include "base/usb_serial_number.h"

namespace Base {

std::string UsbSerialNumber(const std::string& ofDescriptor, const std::string& ofDeviceId) {
    const bool isBlank = ofDescriptor.find_first_not_of(" \t\r\n") == std::string::npos;
    return isBlank ? ofDeviceId : ofDescriptor;
}

}  // namespace Base
