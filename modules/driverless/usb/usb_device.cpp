// SPDX-License-Identifier: Apache-2.0

#include "modules/driverless/usb/usb_device.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "base/device_id.h"
#include "base/text/utf8.h"

namespace Driverless {

namespace {

constexpr std::uint8_t kGetDeviceId = 0;
constexpr std::uint8_t kPrinterRequest = static_cast<std::uint8_t>(LIBUSB_ENDPOINT_IN) |
                                         static_cast<std::uint8_t>(LIBUSB_REQUEST_TYPE_CLASS) |
                                         static_cast<std::uint8_t>(LIBUSB_RECIPIENT_INTERFACE);
constexpr std::uint8_t kDeviceRequest = LIBUSB_ENDPOINT_IN;

// Longer than any device id.
constexpr std::size_t kLongestAnswer = 4096;

struct FreeConfiguration {
    void operator()(libusb_config_descriptor* configuration) const {
        libusb_free_config_descriptor(configuration);
    }
};
using Configuration = std::unique_ptr<libusb_config_descriptor, FreeConfiguration>;

Configuration ConfigurationOf(libusb_device* device, std::uint8_t index) {
    libusb_config_descriptor* configuration = nullptr;
    return libusb_get_config_descriptor(device, index, &configuration) == LIBUSB_SUCCESS
               ? Configuration(configuration)
               : nullptr;
}

// The value of the configuration in use; nothing for a device that is not configured.
std::optional<std::uint8_t> ValueInUse(libusb_device* device) {
    libusb_config_descriptor* configuration = nullptr;
    if (libusb_get_active_config_descriptor(device, &configuration) != LIBUSB_SUCCESS) {
        return std::nullopt;
    }
    return Configuration(configuration)->bConfigurationValue;
}

void AddPrinterInterfaces(const libusb_config_descriptor& configuration, std::uint8_t index,
                          std::vector<PrinterInterface>& found) {
    for (const libusb_interface& one :
         std::span(configuration.interface, configuration.bNumInterfaces)) {
        for (const libusb_interface_descriptor& setting :
             std::span(one.altsetting, static_cast<std::size_t>(one.num_altsetting))) {
            if (setting.bInterfaceClass == LIBUSB_CLASS_PRINTER) {
                found.push_back({setting.bInterfaceNumber, setting.bAlternateSetting, index});
            }
        }
    }
}

unsigned ByteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

// The text of a string descriptor of at least two bytes. The first is the length that the device
// reports.
std::string_view Body(std::string_view answer) {
    constexpr std::size_t headSize = 2;
    const std::size_t size = std::clamp<std::size_t>(ByteAt(answer, 0), headSize, answer.size());
    return answer.substr(headSize, size - headSize);
}

std::string FromUtf16(std::string_view bytes) {
    std::u16string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        text += static_cast<char16_t>(ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8U);
    }
    return Base::ToUtf8(text);
}

}  // namespace

std::vector<PrinterInterface> PrinterInterfacesOf(libusb_device* device) {
    std::vector<PrinterInterface> found;
    libusb_device_descriptor descriptor{};
    if (libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS) {
        return found;
    }
    const auto used = ValueInUse(device);
    for (std::uint8_t index = 0; index < descriptor.bNumConfigurations; ++index) {
        const Configuration configuration = ConfigurationOf(device, index);
        if (configuration && (!used || *used == configuration->bConfigurationValue)) {
            AddPrinterInterfaces(*configuration, index, found);
        }
    }
    return found;
}

std::vector<std::uint8_t> PathOf(libusb_device* device) {
    std::array<std::uint8_t, 8> ports{};
    const int count = libusb_get_port_numbers(device, ports.data(), static_cast<int>(ports.size()));
    std::vector<std::uint8_t> path{libusb_get_bus_number(device)};
    for (const std::uint8_t port :
         std::span(ports).first(static_cast<std::size_t>(std::max(count, 0)))) {
        path.push_back(port);
    }
    return path;
}

UsbDevice::UsbDevice(libusb_device* asked, std::chrono::milliseconds patience)
    : device(asked), deadline(Clock::now() + patience) {}

int UsbDevice::Open() {
    libusb_device_handle* opened = nullptr;
    const int error = libusb_open(device, &opened);
    handle.reset(opened);
    return error;
}

int UsbDevice::Describe(const std::vector<PrinterInterface>& interfaces, UsbPrinter& printer) {
    for (const PrinterInterface& one : interfaces) {
        printer.deviceId = printer.deviceId.empty() ? DeviceId(one) : printer.deviceId;
    }
    libusb_device_descriptor descriptor{};
    libusb_get_device_descriptor(device, &descriptor);
    printer.maker = Text(descriptor.iManufacturer);
    printer.product = Text(descriptor.iProduct);
    printer.serialNumber = Text(descriptor.iSerialNumber);
    const bool isKnown = !printer.deviceId.empty() || !printer.serialNumber.empty();
    return isKnown ? static_cast<int>(LIBUSB_SUCCESS) : failure;
}

void UsbDevice::Note(int error) {
    if (error < 0 && error != LIBUSB_ERROR_PIPE && failure == LIBUSB_SUCCESS) {
        failure = error;
    }
}

UsbDevice::Answer UsbDevice::Ask(std::uint8_t type, std::uint8_t request, std::uint16_t value,
                                 std::uint16_t index) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) {
        return {LIBUSB_ERROR_TIMEOUT, {}};
    }
    // A string's length is one byte, and some devices refuse a request for more.
    const std::size_t room = type == kDeviceRequest ? 255 : kLongestAnswer;
    std::array<unsigned char, kLongestAnswer> answer{};
    const int size = libusb_control_transfer(handle.get(), type, request, value, index,
                                             answer.data(), static_cast<std::uint16_t>(room),
                                             static_cast<unsigned>(left.count()));
    if (size < 0) {
        return {size, {}};
    }
    return {LIBUSB_SUCCESS, std::string(answer.begin(), answer.begin() + size)};
}

// The system usually allows this request even if another program has claimed the interface;
// otherwise the interface must be claimed first.
UsbDevice::Answer UsbDevice::AskForDeviceId(const PrinterInterface& one) {
    const auto index = static_cast<std::uint16_t>(one.number << 8U | one.setting);
    Answer answer = Ask(kPrinterRequest, kGetDeviceId, one.configuration, index);
    if (answer.error != LIBUSB_ERROR_IO) {
        return answer;
    }
    const int claimed = libusb_claim_interface(handle.get(), one.number);
    if (claimed != LIBUSB_SUCCESS) {
        return {claimed, {}};
    }
    answer = Ask(kPrinterRequest, kGetDeviceId, one.configuration, index);
    libusb_release_interface(handle.get(), one.number);
    return answer;
}

std::string UsbDevice::DeviceId(const PrinterInterface& one) {
    const Answer answer = AskForDeviceId(one);
    Note(answer.error);
    return std::string(Base::DeviceIdText(answer.bytes));
}

std::string UsbDevice::Text(std::uint8_t index) {
    if (index == 0 || !KnowsLanguage()) {
        return {};
    }
    const Answer answer = AskForString(index, language);
    const bool isText = answer.bytes.size() >= 2 && ByteAt(answer.bytes, 1) == LIBUSB_DT_STRING;
    return isText ? FromUtf16(Body(answer.bytes)) : std::string();
}

// A device lists its languages in string 0; the first is used.
bool UsbDevice::KnowsLanguage() {
    if (language == 0) {
        const Answer answer = AskForString(0, 0);
        if (answer.bytes.size() >= 4) {
            language =
                static_cast<std::uint16_t>(ByteAt(answer.bytes, 2) | ByteAt(answer.bytes, 3) << 8U);
        }
    }
    return language != 0;
}

UsbDevice::Answer UsbDevice::AskForString(std::uint8_t index, std::uint16_t inLanguage) {
    const auto value = static_cast<std::uint16_t>(LIBUSB_DT_STRING << 8U | index);
    Answer answer = Ask(kDeviceRequest, LIBUSB_REQUEST_GET_DESCRIPTOR, value, inLanguage);
    Note(answer.error);
    return answer;
}

}  // namespace Driverless
