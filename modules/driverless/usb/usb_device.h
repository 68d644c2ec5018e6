// SPDX-License-Identifier: Apache-2.0

#pragma once

// Queries one USB device for its description.

#include <libusb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "modules/driverless/usb/usb_printer.h"

namespace Driverless {

// An alternate setting of a printer interface.
struct PrinterInterface {
    std::uint8_t number = 0;
    std::uint8_t setting = 0;
    std::uint8_t configuration = 0;  // its index, not its value
};

// The printer interfaces of a device, from its cached descriptors, without a request to the device.
// Empty if it is not a printer.
std::vector<PrinterInterface> PrinterInterfacesOf(libusb_device* device);

// The bus and the ports on the path to the device, as numbers. Sorting them sorts the places.
std::vector<std::uint8_t> PathOf(libusb_device* device);

class UsbDevice {
public:
    // `patience` limits all answers of the device together.
    UsbDevice(libusb_device* asked, std::chrono::milliseconds patience);

    // LIBUSB_SUCCESS, or the error that prevents queries.
    int Open();

    // Reads the device's description. LIBUSB_SUCCESS also when the device has none; else the error.
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
    int failure = LIBUSB_SUCCESS;  // the first error other than a refusal
};

}  // namespace Driverless
