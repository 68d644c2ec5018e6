#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"
#include "platform/PrinterDiscoverAPI/PrinterUsbDeviceManager.h"

namespace PrinterDiscoverAPI {

// A printer came or went.
struct UsbChange {
    PrinterUsbApiStruct::EmDeviceState state;
    std::wstring hardwareId;
};

// The printers that are known to be there. It turns what the system says about interfaces, which
// may be said twice and without the identity of what is gone, into changes of whole devices.
class UsbPrinterTable {
public:
    // Each operation returns what has changed by it, removals first.
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
