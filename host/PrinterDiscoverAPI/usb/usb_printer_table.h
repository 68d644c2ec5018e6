// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

namespace PrinterDiscoverAPI {

// The arrival or removal of a printer.
struct UsbChange {
    PrinterUsbApiStruct::EmDeviceState state;
    std::wstring hardwareId;
};

// The printers that are known to be present. Turns the system's events about interfaces, which may
// be repeated and may not identify a removed device, into changes of whole devices.
class UsbPrinterTable {
public:
    // Each operation returns the changes that it caused, removals first.
    std::vector<UsbChange> Add(const UsbPrinter& printer);
    std::vector<UsbChange> Remove(const std::string& path);
    std::vector<UsbChange> Replace(const std::vector<UsbPrinter>& present);

private:
    bool HasDevice(const std::string& devicePath) const;
    void Erase(std::map<std::string, UsbPrinter>::iterator printer,
               std::vector<UsbChange>& changes);

    std::map<std::string, UsbPrinter> printers;  // by the interface's path
};

}  // namespace PrinterDiscoverAPI
