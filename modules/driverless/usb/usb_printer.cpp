// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/usb_printer.h"

#include <array>
#include <cstdio>

#include "base/text/display_text.h"
#include "base/text/record_field.h"
#include "base/usb_serial_number.h"
#include "modules/driverless/printer/printer.h"

namespace Driverless {

namespace {

std::string AddressOf(const UsbPrinter& usb) {
    return "usb:" + usb.place;
}

std::string NameOf(const UsbPrinter& usb) {
    const std::string maker = Base::CleanText(usb.maker);
    const std::string product = Base::CleanText(usb.product);
    if (!maker.empty() || !product.empty()) {
        return maker.empty() || product.empty() ? maker + product : maker + " " + product;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "USB printer %04x:%04x", usb.vendorId, usb.productId);
    return text.data();
}

// The attributes that the printer would report over IPP, as far as known over USB.
PrinterAttributes AttributesOf(const UsbPrinter& usb) {
    PrinterAttributes attributes;
    attributes.deviceId = usb.deviceId;
    attributes.serialNumber =
        Base::UsbSerialNumber(Base::CleanText(usb.serialNumber), SerialNumber(attributes));
    if (attributes.serialNumber.empty()) {
        attributes.serialNumber = AddressOf(usb);
    }
    return attributes;
}

}  // namespace

VendorSdk::DeviceInfo ToRecord(const UsbPrinter& usb) {
    Printer printer =
        Describe({NameOf(usb), {}, ServiceKind::Usb, -1}, Service{}, AttributesOf(usb));
    printer.address = AddressOf(usb);
    return ToRecord(printer);
}

bool HasSerialNumber(const VendorSdk::DeviceInfo& record) {
    const std::string_view serialNumber = Base::FieldView(record.deviceSN);
    return !serialNumber.empty() && serialNumber != Base::FieldView(record.extra2);
}

}  // namespace Driverless
