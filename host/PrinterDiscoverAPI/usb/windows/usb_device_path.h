// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string_view>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

// Parses the path of a Windows device interface, such as
//   \\?\USB#VID_1234&PID_ABCD&MI_01#6&1f2e3d&0&0001#{28d78fad-5a12-11d1-ae5b-0000f803a8c2}
// whose parts are the bus, the hardware identifiers, the instance and the interface class. Returns
// nothing when the device is not on USB. Ignores upper and lower case.
std::optional<UsbPrinter> UsbPrinterOfPath(std::wstring_view path);

}  // namespace PrinterDiscoverAPI
