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

// A USB device that is asked what it is.
struct SimulatedPrinter {
    std::string place = "1-1";  // bus-port.port
    unsigned vendorId = 0x1209;
    unsigned productId = 0x0001;
    std::vector<unsigned> interfaceClasses = {7};
    std::string deviceId = "MFG:Acme;MDL:USB Laser;SN:USB1;";
    // Its string descriptors in UTF-16; one that is empty it does not have.
    std::u16string maker = u"Acme Inc.";
    std::u16string product = u"Laser on USB";
    std::u16string serialNumber = u"STRING1";
    Manner manner = Manner::Answers;
};

// Devices that all of the process and its children see in place of the real ones.
class SimulatedPrinters {
public:
    SimulatedPrinters();
    ~SimulatedPrinters();
    SimulatedPrinters(const SimulatedPrinters&) = delete;
    SimulatedPrinters& operator=(const SimulatedPrinters&) = delete;

    void Plug(const SimulatedPrinter& printer);
    void Unplug(const SimulatedPrinter& printer);
    // Nobody but root may open the device.
    void Forbid(const SimulatedPrinter& printer);

private:
    class Bed;
    const std::unique_ptr<Bed> bed;
};

}  // namespace UsbTest
