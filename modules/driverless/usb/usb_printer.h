// SPDX-License-Identifier: Apache-2.0

#pragma once

// One printer on USB, and its record. The README explains the record's fields to callers.

#include <cstdint>
#include <string>

#include "VendorSdk/records.h"

namespace Driverless {

struct UsbPrinter {
    std::string place;  // the bus and the ports on the path to it: "1-4.2"
    std::uint16_t vendorId = 0;
    std::uint16_t productId = 0;
    std::string deviceId;  // IEEE 1284
    // Its string descriptors; empty if missing.
    std::string maker;
    std::string product;
    std::string serialNumber;
};

VendorSdk::DeviceInfo ToRecord(const UsbPrinter& printer);

// Whether the record of a printer on USB has the printer's own serial number, not only its place.
bool HasSerialNumber(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless
