#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// The serial number in a USB device's instance identifier, "USB\VID_1234&PID_ABCD\0A1B2C". Empty
// when the device has none: what the system makes up in its place has an ampersand.
std::wstring SerialNumberOfInstance(std::wstring_view instanceId);

}  // namespace PrinterAdapter
