#pragma once

#include <string>

namespace Base {

// The serial number of a device on USB, from that of its USB descriptor and that of its IEEE 1284
// device id, where it has them. The descriptor's goes first: it is the device's own, by which the
// system tells devices apart. Makers write device ids once for a model, and some of the serial
// numbers there are wrong.
std::string UsbSerialNumber(const std::string& ofDescriptor, const std::string& ofDeviceId);

}  // namespace Base
