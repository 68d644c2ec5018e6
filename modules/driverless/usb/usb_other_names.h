#pragma once

// What a printer on USB may be called over IPP. Its record has the serial number of its USB
// descriptor. A bridge tells what the printer says over IPP, which may be the serial number of its
// IEEE 1284 device id, where that is another one.

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
    bool isShared = false;  // another printer of that model has it too
};

class UsbOtherNames {
public:
    // `printers` are all of one model that are plugged in now.
    void Remember(std::uint16_t vendorId, std::uint16_t productId,
                  const std::vector<UsbPrinter>& printers);

    // That of the printer that a record describes.
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

// The one memory. Never destroyed: calls may be under way until the process is gone.
UsbOtherNames& KnownUsbNames();

}  // namespace Driverless
