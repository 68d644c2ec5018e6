#include "tests/host/usb/simulated_usb.h"

#include <gtest/gtest.h>
#include <umockdev.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <sstream>

namespace UsbTest {

namespace {

using Bytes = std::vector<std::uint8_t>;

void Append(Bytes& bytes, std::initializer_list<unsigned> values) {
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::uint8_t>(value));
    }
}

std::string Hex(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", byte);
        text += digits.data();
    }
    return text;
}

std::string Text(const char* format, unsigned value) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

unsigned BusOf(const SimulatedDevice& device) {
    return static_cast<unsigned>(std::stoul(device.place));
}

// Device numbers follow from ports, so that no two devices of a bus have the same.
unsigned NumberOf(const SimulatedDevice& device) {
    return 1 + static_cast<unsigned>(std::stoul(device.place.substr(device.place.find('-') + 1)));
}

// The device, configuration, interface and endpoint descriptors that the device would send.
std::string DescriptorsOf(const SimulatedDevice& device) {
    const auto count = static_cast<unsigned>(device.interfaceClasses.size());
    const unsigned length = 9 + count * (9 + 7);
    Bytes bytes;
    Append(bytes, {18, 1, 0x00, 0x02, 0, 0, 0, 64});
    Append(bytes, {device.vendorId & 0xFF, device.vendorId >> 8});
    Append(bytes, {device.productId & 0xFF, device.productId >> 8});
    Append(bytes, {0x00, 0x01, 0, 0, 0, 1});
    Append(bytes, {9, 2, length & 0xFF, length >> 8, count, 1, 0, 0xC0, 50});
    for (unsigned index = 0; index < count; ++index) {
        Append(bytes, {9, 4, index, 0, 1, device.interfaceClasses[index], 1, 2, 0});
        Append(bytes, {7, 5, index + 1, 2, 0x00, 0x02, 0});
    }
    return Hex(bytes);
}

std::string FolderOf(const SimulatedDevice& device) {
    return "/devices/pci0000:00/0000:00:14.0/usb" + std::to_string(BusOf(device)) + '/' +
           device.place;
}

std::string FolderOfInterface(const SimulatedDevice& device, std::size_t index) {
    return FolderOf(device) + '/' + device.place + ":1." + std::to_string(index);
}

std::string ProductOf(const SimulatedDevice& device) {
    return Text("%x", device.vendorId) + '/' + Text("%x", device.productId) + "/100";
}

std::string DescriptionOf(const SimulatedDevice& device) {
    const std::string bus = Text("%03u", BusOf(device));
    const std::string number = Text("%03u", NumberOf(device));
    std::ostringstream text;
    text << "P: " << FolderOf(device) << "\nN: bus/usb/" << bus << '/' << number
         << "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: DEVNAME=/dev/bus/usb/" << bus << '/'
         << number << "\nE: BUSNUM=" << bus << "\nE: DEVNUM=" << number
         << "\nE: PRODUCT=" << ProductOf(device) << "\nA: busnum=" << BusOf(device)
         << "\nA: devnum=" << NumberOf(device) << "\nA: speed=480\nA: bConfigurationValue=1"
         << "\nA: idVendor=" << Text("%04x", device.vendorId)
         << "\nA: idProduct=" << Text("%04x", device.productId)
         << "\nH: descriptors=" << DescriptorsOf(device) << "\n\n";
    return text.str();
}

std::string DescriptionOfInterface(const SimulatedDevice& device, std::size_t index) {
    const unsigned interfaceClass = device.interfaceClasses[index];
    std::ostringstream text;
    text << "P: " << FolderOfInterface(device, index)
         << "\nE: DEVTYPE=usb_interface\nE: SUBSYSTEM=usb\n";
    if (device.hasProductProperty) {
        text << "E: PRODUCT=" << ProductOf(device) << "\nE: INTERFACE=" << interfaceClass
             << "/1/2\n";
    }
    text << "A: bInterfaceNumber=" << Text("%02x", static_cast<unsigned>(index))
         << "\nA: bInterfaceClass=" << Text("%02x", interfaceClass)
         << "\nA: bInterfaceSubClass=01\nA: bInterfaceProtocol=02\n\n";
    return text.str();
}

}  // namespace

SimulatedUsb::SimulatedUsb() : bed(umockdev_testbed_new()) {}

SimulatedUsb::~SimulatedUsb() {
    g_object_unref(bed);
}

void SimulatedUsb::Plug(const SimulatedDevice& device) {
    std::string description = DescriptionOf(device);
    for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
        description += DescriptionOfInterface(device, index);
    }
    GError* error = nullptr;
    umockdev_testbed_add_from_string(bed, description.c_str(), &error);
    if (error != nullptr) {
        ADD_FAILURE() << device.place << ": " << error->message;
        g_error_free(error);
    }
}

void SimulatedUsb::Unplug(const SimulatedDevice& device) {
    for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
        const std::string path = "/sys" + FolderOfInterface(device, index);
        umockdev_testbed_uevent(bed, path.c_str(), "remove");
        umockdev_testbed_remove_device(bed, path.c_str());
    }
    const std::string path = "/sys" + FolderOf(device);
    umockdev_testbed_uevent(bed, path.c_str(), "remove");
    umockdev_testbed_remove_device(bed, path.c_str());
}

void SimulatedUsb::TellAgain(const SimulatedDevice& device) {
    umockdev_testbed_uevent(bed, ("/sys" + FolderOf(device)).c_str(), "add");
    for (std::size_t index = 0; index < device.interfaceClasses.size(); ++index) {
        umockdev_testbed_uevent(bed, ("/sys" + FolderOfInterface(device, index)).c_str(), "add");
    }
}

std::string RunAndRead(const std::string& command) {
    // Only the test bed's library: a sanitizer's run-time does not fit a program without it.
    setenv("LD_PRELOAD", "libumockdev-preload.so.0", 1);
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), pipe.get())) {
        output.append(part.data(), length);
    }
    return output;
}

}  // namespace UsbTest
