// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace UsbTest {

// Sends events to whoever listens to the device service, over the kernel's own sockets.
class DeviceService {
public:
    // Throws where others listen too: with_own_device_events makes sure that nobody does.
    DeviceService();
    ~DeviceService();
    DeviceService(const DeviceService&) = delete;
    DeviceService& operator=(const DeviceService&) = delete;

    // Tells that an interface of that class came ("add") or went ("remove").
    void Tell(const std::string& action, const std::string& interface,
              unsigned interfaceClass = 7) const;

private:
    int socket;
};

}  // namespace UsbTest
