#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/PrinterDiscoverAPI/usb/windows/usb_event_queue.h"

namespace PrinterDiscoverAPI {

// A registration for the system's device notifications; ends with the object. The events go to the
// queue it was made for.
class UsbNotifications {
public:
    UsbNotifications() = default;
    UsbNotifications(const UsbNotifications&) = delete;
    UsbNotifications& operator=(const UsbNotifications&) = delete;
    virtual ~UsbNotifications() = default;
};

// Registers with the configuration manager. Null without a `problem` where it cannot notify.
std::unique_ptr<UsbNotifications> NotifyByConfigurationManager(UsbEventQueue& queue,
                                                               std::string& problem);

// Registers a message window on a thread of its own. Null, with the reason in `problem`, when the
// system refuses.
std::unique_ptr<UsbNotifications> NotifyByWindow(UsbEventQueue& queue, std::string& problem);

// Puts what is said of the device interface into the queue; nothing when it is not one on USB.
void PutUsbEvent(UsbEventQueue& queue, UsbEvent::Kind kind, std::wstring_view path);

// "NAME failed: error 5".
std::string SystemProblem(std::string_view operation, DWORD error);

}  // namespace PrinterDiscoverAPI
