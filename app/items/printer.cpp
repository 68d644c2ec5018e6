// SPDX-License-Identifier: Apache-2.0

#include "app/items/printer.h"

#include <tuple>

#include "base/text/record_field.h"

namespace App {

Printer::Printer(const PrinterDeviceDiscoverSdk::DeviceInfo& device)
    : record(device),
      serialNumber(Base::FieldText(device.deviceSN)),
      vendor(Base::FieldText(device.modelID)),
      makeAndModel(Base::FieldText(device.extra1)),
      address(Base::FieldText(device.extra2)),
      resource(Base::FieldText(device.extra3)),
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
