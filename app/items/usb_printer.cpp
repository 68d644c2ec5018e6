// SPDX-License-Identifier: Apache-2.0

#include "app/items/usb_printer.h"

#include <fmt/chrono.h>

#include <utility>

#include "base/text/record_field.h"

namespace App {

namespace {

// Serial number and place identify a printer.
constexpr Heading kSerialNumber{"SERIAL NUMBER", Column::Whole};
constexpr Heading kMakeAndModel{"MAKE AND MODEL", Column::Yielding};
constexpr Heading kPlace{"PLACE", Column::Whole};
constexpr Heading kVendor{"VENDOR", Column::Yielding};

template <class Item>
Table TableWith(std::vector<Heading> headings, const std::vector<Item>& items) {
    Table table{std::move(headings), {}};
    for (const Item& item : items) {
        const auto row = RowOf(item);
        table.rows.emplace_back(row.begin(), row.end());
    }
    return table;
}

}  // namespace

InstalledPrinter::InstalledPrinter(const PrinterDeviceDiscoverSdk::DeviceUsbInfo& device)
    : serialNumber(Base::FieldText(device.deviceSN)), model(Base::FieldText(device.modelID)) {
    if (!serialNumber.empty()) {
        isOnNetwork = device.isNetConfigured;
    }
}

InstalledPrinterRow RowOf(const InstalledPrinter& printer) {
    return {Cell(printer.serialNumber), Cell(printer.model),
            !printer.isOnNetwork   ? "-"
            : *printer.isOnNetwork ? "yes"
                                   : "no"};
}

Table TableOf(const std::vector<InstalledPrinter>& printers) {
    return TableWith(
        {kSerialNumber, {"MODEL", Column::Yielding}, {"ON THE NETWORK", Column::Whole}}, printers);
}

UsbPrinterRow RowOf(const UsbPrinter& printer) {
    return {Cell(printer.serialNumber), Cell(printer.makeAndModel), Cell(printer.address),
            Cell(printer.vendor)};
}

Table TableOf(const std::vector<UsbPrinter>& printers) {
    return TableWith({kSerialNumber, kMakeAndModel, kPlace, kVendor}, printers);
}

ArrivalRow RowOf(const Arrival& arrival) {
    const auto seconds = std::chrono::time_point_cast<std::chrono::seconds>(arrival.time);
    const auto [serialNumber, makeAndModel, place, vendor] = RowOf(arrival.printer);
    const std::time_t time = std::chrono::system_clock::to_time_t(seconds);
    return {fmt::format("{:%H:%M:%S}", fmt::localtime(time)), serialNumber, makeAndModel, place,
            vendor};
}

Table TableOf(const std::vector<Arrival>& arrivals) {
    return TableWith({{"TIME", Column::Whole}, kSerialNumber, kMakeAndModel, kPlace, kVendor},
                     arrivals);
}

}  // namespace App
