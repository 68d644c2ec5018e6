// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/usb_printer_table.h"

#include <algorithm>
#include <iterator>

namespace PrinterDiscoverAPI {

namespace {

bool IsSame(const UsbPrinter& one, const UsbPrinter& other) {
    return one.devicePath == other.devicePath && one.hardwareId == other.hardwareId;
}

}  // namespace

std::vector<UsbChange> UsbPrinterTable::Add(const UsbPrinter& printer) {
    std::vector<UsbChange> changes;
    const auto known = printers.find(printer.path);
    if (known != printers.end()) {
        if (IsSame(known->second, printer)) {
            return changes;
        }
        // Another device is at this path now; the removal of the former went unnoticed.
        Erase(known, changes);
    }
    if (!HasDevice(printer.devicePath)) {
        changes.push_back({PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, printer.hardwareId});
    }
    printers.emplace(printer.path, printer);
    return changes;
}

std::vector<UsbChange> UsbPrinterTable::Remove(const std::string& path) {
    std::vector<UsbChange> changes;
    for (auto printer = printers.begin(); printer != printers.end();) {
        const auto next = std::next(printer);
        if (printer->first == path || printer->second.devicePath == path) {
            Erase(printer, changes);
        }
        printer = next;
    }
    return changes;
}

std::vector<UsbChange> UsbPrinterTable::Replace(const std::vector<UsbPrinter>& present) {
    std::vector<UsbChange> changes;
    for (auto printer = printers.begin(); printer != printers.end();) {
        const auto next = std::next(printer);
        const bool isThere =
            std::any_of(present.begin(), present.end(), [&printer](const UsbPrinter& candidate) {
                return candidate.path == printer->first && IsSame(candidate, printer->second);
            });
        if (!isThere) {
            Erase(printer, changes);
        }
        printer = next;
    }
    for (const UsbPrinter& printer : present) {
        const std::vector<UsbChange> added = Add(printer);
        changes.insert(changes.end(), added.begin(), added.end());
    }
    return changes;
}

bool UsbPrinterTable::HasDevice(const std::string& devicePath) const {
    return std::any_of(printers.begin(), printers.end(), [&devicePath](const auto& printer) {
        return printer.second.devicePath == devicePath;
    });
}

void UsbPrinterTable::Erase(std::map<std::string, UsbPrinter>::iterator printer,
                            std::vector<UsbChange>& changes) {
    const UsbPrinter gone = printer->second;
    printers.erase(printer);
    if (!HasDevice(gone.devicePath)) {
        changes.push_back({PrinterUsbApiStruct::DEVICE_STATE_REMOVED, gone.hardwareId});
    }
}

}  // namespace PrinterDiscoverAPI
