// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace UsbTest {

// How a simulated device takes to being asked.
enum class Manner {
    Answers,
    RefusesDeviceId,    // stalls when it is asked for its device id
    WantsItsInterface,  // answers to who has claimed its interface only
    InterfaceIsTaken,   // and another program has that
    EverythingIsTaken,  // another program has the whole device
    Silent,             // never answers
    GoneMeanwhile,      // listed, but not there any more
};

// A USB device: where it is plugged in, what it is, and what it answers.
struct SimulatedDevice {
    std::string place = "1-1";  // bus-port.port
    unsigned vendorId = 0x1209;
    unsigned productId = 0x0001;
    std::vector<unsigned> interfaceClasses = {7};
    // The kernel's events name the product; without it only the device's files do.
    bool hasProductProperty = true;
    std::string deviceId = "MFG:Acme;MDL:USB Laser;SN:USB1;";
    // Its string descriptors in UTF-16; one that is empty it does not have.
    std::u16string maker = u"Acme Inc.";
    std::u16string product = u"Laser on USB";
    std::u16string serialNumber = u"STRING1";
    Manner manner = Manner::Answers;
};

// A test bed of USB devices, which all of the process and its children see in place of the real
// ones. The kernel's events and files come from it.
class SimulatedUsb {
public:
    SimulatedUsb();
    ~SimulatedUsb();
    SimulatedUsb(const SimulatedUsb&) = delete;
    SimulatedUsb& operator=(const SimulatedUsb&) = delete;

    void Plug(const SimulatedDevice& device);
    void Unplug(const SimulatedDevice& device);
    // Tells of a device that is there once more, as a restarted device service does.
    void TellAgain(const SimulatedDevice& device);
    // The system shows no USB at all, as in a container.
    void Hide();
    // Nobody but root may open the device.
    void Forbid(const SimulatedDevice& device);

private:
    class Bed;
    const std::unique_ptr<Bed> bed;
};

// What a program with its arguments writes; it sees the simulated devices.
std::string RunAndRead(const std::string& command);

}  // namespace UsbTest
