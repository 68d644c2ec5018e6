// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// The serial number in a USB device's instance id, "USB\VID_1234&PID_ABCD\0A1B2C". Empty when the
// device has none: the replacement that the system then generates contains an ampersand.
std::wstring SerialNumberOfInstance(std::wstring_view instanceId);

}  // namespace PrinterAdapter
