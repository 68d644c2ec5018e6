// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/PrinterDiscoverAPI/usb/windows/usb_event_queue.h"

namespace PrinterDiscoverAPI {

// A registration for the system's device notifications, which ends with the object. Events go to
// the queue of its creation.
class UsbNotifications {
public:
    UsbNotifications() = default;
    UsbNotifications(const UsbNotifications&) = delete;
    UsbNotifications& operator=(const UsbNotifications&) = delete;
    virtual ~UsbNotifications() = default;
};

// Registers with the configuration manager. Null without a `problem` if this system's configuration
// manager has no notifications.
std::unique_ptr<UsbNotifications> NotifyByConfigurationManager(UsbEventQueue& queue,
                                                               std::string& problem);

// Registers a message window on a separate thread. Null, with the reason in `problem`, when the
// system refuses.
std::unique_ptr<UsbNotifications> NotifyByWindow(UsbEventQueue& queue, std::string& problem);

// Queues an event about the device interface at `path`; does nothing when it is not on USB.
void PutUsbEvent(UsbEventQueue& queue, UsbEvent::Kind kind, std::wstring_view path);

// "NAME failed: error 5".
std::string SystemProblem(std::string_view operation, DWORD error);

}  // namespace PrinterDiscoverAPI
