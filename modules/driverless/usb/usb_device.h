#pragma once

// One USB device that is asked what it is.

#include <libusb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

// A setting of an interface of a printer.
struct PrinterInterface {
    std::uint8_t number = 0;
    std::uint8_t setting = 0;
    std::uint8_t configuration = 0;  // its index, not its value
};

// Those of a device, as its descriptors have them: nothing is asked. Empty for what is no printer.
std::vector<PrinterInterface> PrinterInterfacesOf(libusb_device* device);

// The bus, and the ports on the way to the device, as numbers; their order is that of the places.
std::vector<std::uint8_t> PathOf(libusb_device* device);

class UsbDevice {
public:
    // `patience` is for all its answers together.
    UsbDevice(libusb_device* asked, std::chrono::milliseconds patience);

    // LIBUSB_SUCCESS, or why it cannot be asked.
    int Open();

    // What it says of itself. LIBUSB_SUCCESS also when it says nothing; else why nothing is known.
    int Describe(const std::vector<PrinterInterface>& interfaces, UsbPrinter& printer);

private:
    struct Close {
        void operator()(libusb_device_handle* opened) const { libusb_close(opened); }
    };
    using Clock = std::chrono::steady_clock;
    struct Answer {
        int error = LIBUSB_SUCCESS;
        std::string bytes;
    };

    Answer Ask(std::uint8_t type, std::uint8_t request, std::uint16_t value, std::uint16_t index);
    Answer AskForDeviceId(const PrinterInterface& interface);
    std::string DeviceId(const PrinterInterface& interface);
    Answer AskForString(std::uint8_t index, std::uint16_t inLanguage);
    bool KnowsLanguage();
    std::string Text(std::uint8_t index);
    void Note(int error);

    libusb_device* const device;
    const Clock::time_point deadline;
    std::unique_ptr<libusb_device_handle, Close> handle;
    std::uint16_t language = 0;
    int failure = LIBUSB_SUCCESS;  // the first that was not just a refusal
};

}  // namespace Driverless
