// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/usb_other_names.h"

#include <algorithm>

#include "base/text/record_field.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

namespace {

// The limit of remembered models; no host has more on USB.
constexpr std::size_t kMaxModels = 64;

}  // namespace

void UsbOtherNames::Remember(std::uint16_t vendorId, std::uint16_t productId,
                             const std::vector<UsbPrinter>& printers) {
    std::vector<Names> names;
    for (const UsbPrinter& printer : printers) {
        const VendorSdk::DeviceInfo record = ToRecord(printer);
        PrinterAttributes deviceIdOnly;
        deviceIdOnly.deviceId = printer.deviceId;
        names.push_back({Base::FieldText(record.extra2), Base::FieldText(record.deviceSN),
                         SerialNumber(deviceIdOnly)});
    }
    const std::lock_guard lock(mutex);
    models.erase({vendorId, productId});
    if (!names.empty() && models.size() < kMaxModels) {
        models.emplace(Model{vendorId, productId}, std::move(names));
    }
}

OtherSerialNumber UsbOtherNames::Of(const VendorSdk::DeviceInfo& record) {
    const std::string place = Base::FieldText(record.extra2);
    const std::string serialNumber = Base::FieldText(record.deviceSN);
    const std::lock_guard lock(mutex);
    for (const auto& [model, names] : models) {
        const auto found = std::find_if(names.begin(), names.end(), [&](const Names& one) {
            return one.place == place && one.serialNumber == serialNumber;
        });
        if (found == names.end() || found->other.empty() || found->other == serialNumber) {
            continue;
        }
        const bool shared = std::any_of(names.begin(), names.end(), [&](const Names& one) {
            return &one != &*found &&
                   (one.other == found->other || one.serialNumber == found->other);
        });
        return {found->other, shared};
    }
    return {};
}

UsbOtherNames& KnownUsbNames() {
    static UsbOtherNames& names = *new UsbOtherNames;
    return names;
}

}  // namespace Driverless
