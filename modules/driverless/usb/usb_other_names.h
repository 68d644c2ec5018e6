// SPDX-License-Identifier: Apache-2.0

#pragma once

// The other serial number of a printer on USB. Its record has the serial number of its USB
// descriptor. Over IPP the printer may report that of its IEEE 1284 device id, which may differ.

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "VendorSdk/records.h"
#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

struct OtherSerialNumber {
    std::string text;       // empty: none
    bool isShared = false;  // another printer of the model also has it
};

class UsbOtherNames {
public:
    // `printers`: all plugged-in printers of one model.
    void Remember(std::uint16_t vendorId, std::uint16_t productId,
                  const std::vector<UsbPrinter>& printers);

    // The other serial number of the printer that a record describes.
    OtherSerialNumber Of(const VendorSdk::DeviceInfo& record);

private:
    struct Names {
        std::string place;
        std::string serialNumber;  // as in its record
        std::string other;         // of its device id
    };
    using Model = std::pair<std::uint16_t, std::uint16_t>;

    std::mutex mutex;
    std::map<Model, std::vector<Names>> models;
};

// The process's memory. Never destroyed: calls may run until the process is gone.
UsbOtherNames& KnownUsbNames();

}  // namespace Driverless
