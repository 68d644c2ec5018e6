#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct _UMockdevTestbed;

namespace UsbTest {

// A USB device: where it is plugged in, who made it, and the classes of its interfaces.
struct SimulatedDevice {
    std::string place = "1-1";  // bus-port
    unsigned vendorId = 0x1209;
    unsigned productId = 0x0001;
    std::vector<unsigned> interfaceClasses = {7};
    // The kernel's events name the product; without it only the device's files do.
    bool hasProductProperty = true;
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

private:
    _UMockdevTestbed* bed;
};

// What a shell command writes.
std::string RunAndRead(const std::string& command);

}  // namespace UsbTest
