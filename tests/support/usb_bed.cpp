// SPDX-License-Identifier: Apache-2.0

// Simulated USB devices for a program that asks for them line by line:
//
//     plug PLACE SERIAL [VENDOR-ID PRODUCT-ID [CLASS [silent]]]      numbers in hexadecimal digits
//     unplug PLACE
//     hide                               no USB at all, as in a container
//
// Each is answered with "done" when the system has told of it. The first line that it writes is the
// test bed's folder: programs that have it as UMOCKDEV_DIR, and the test bed's library loaded, see
// the devices. It ends with its input.

#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

#include "tests/support/simulated_usb.h"

namespace {

UsbTest::SimulatedDevice DeviceIn(std::istream& words) {
    UsbTest::SimulatedDevice device;
    std::string serialNumber;
    words >> device.place >> serialNumber;
    device.deviceId = "MFG:Acme;MDL:Radio Laser;SN:" + serialNumber + ";";
    device.serialNumber.assign(serialNumber.begin(), serialNumber.end());
    unsigned vendorId = 0;
    unsigned productId = 0;
    unsigned interfaceClass = 0;
    words >> std::hex;
    if (words >> vendorId >> productId) {
        device.vendorId = vendorId;
        device.productId = productId;
    }
    if (words >> interfaceClass) {
        device.interfaceClasses = {interfaceClass};
    }
    if (std::string manner; words >> manner && manner == "silent") {
        device.manner = UsbTest::Manner::Silent;
    }
    return device;
}

}  // namespace

int main() {
    UsbTest::SimulatedUsb usb;
    std::map<std::string, UsbTest::SimulatedDevice> devices;
    std::cout << std::getenv("UMOCKDEV_DIR") << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "plug") {
            const UsbTest::SimulatedDevice device = DeviceIn(words);
            usb.Plug(device);
            devices.insert_or_assign(device.place, device);
        } else if (command == "hide") {
            usb.Hide();
        } else {
            std::string place;
            words >> place;
            usb.Unplug(devices.at(place));
        }
        std::cout << "done" << std::endl;
    }
    return 0;
}
