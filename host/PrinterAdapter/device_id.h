// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// The fields of a printer's IEEE 1284 device id, "MFG:Acme;MDL:Laser;SN:42;". Missing fields are
// empty.
struct DeviceId {
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
};

// Accepts keys in upper or lower case, in short or long form. If a key occurs twice the first
// counts.
DeviceId ReadDeviceId(std::string_view text);

}  // namespace PrinterAdapter
