// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <cwchar>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

std::wstring UsbHardwareId(unsigned vendorId, unsigned productId) {
    std::array<wchar_t, 32> text{};
    std::swprintf(text.data(), text.size(), L"VID_%04X&PID_%04X", vendorId & 0xFFFF,
                  productId & 0xFFFF);
    return text.data();
}

}  // namespace PrinterDiscoverAPI
