#pragma once

#include <string>
#include <string_view>

namespace PrinterAdapter {

// What a printer says of itself in its IEEE 1284 device identifier, "MFG:Acme;MDL:Laser;SN:42;".
// Each is empty when the identifier does not say.
struct DeviceId {
    std::string manufacturer;
    std::string model;
    std::string serialNumber;
};

// Reads keys in capitals or small letters, in their short or long form; of a key that comes twice
// the first counts.
DeviceId ReadDeviceId(std::string_view text);

}  // namespace PrinterAdapter
