// SPDX-License-Identifier: Apache-2.0

#include "app/items/printer.h"

#include <algorithm>
#include <tuple>

namespace App {

namespace {

// The text of a field, up to its terminator or the end of the field.
template <std::size_t Width>
std::string Text(const char (&field)[Width]) {
    return {field, std::find(field, field + Width, '\0')};
}

}  // namespace

Printer::Printer(const PrinterDeviceDiscoverSdk::DeviceInfo& device)
    : record(device),
      serialNumber(Text(device.deviceSN)),
      vendor(Text(device.modelID)),
      makeAndModel(Text(device.extra1)),
      address(Text(device.extra2)),
      resource(Text(device.extra3)),
      port(device.code1),
      service(device.code2) {}

// Devices may share a serial number, or have none: the address has to tell them apart.
std::optional<std::string> Printer::Key() const {
    std::string key = std::to_string(port);
    for (const std::string* const part : {&vendor, &serialNumber, &address}) {
        key += '\0' + *part;  // no text of a record holds one
    }
    return key;
}

bool Printer::operator==(const Printer& other) const {
    const auto texts = [](const Printer& p) {
        return std::tie(p.serialNumber, p.vendor, p.makeAndModel, p.address, p.resource, p.port,
                        p.service);
    };
    return texts(*this) == texts(other);
}

}  // namespace App
