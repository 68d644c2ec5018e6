#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "host/PrinterDiscoverAPI/usb_manager.h"

namespace PrinterDiscoverAPI {

// Takes device events from where the system calls and keeps them for the one who waits.
class UsbEventQueue {
public:
    void Put(const UsbEvent& event);
    UsbEvent Wait();
    void Interrupt();

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<UsbEvent> events;
    bool interrupted = false;
};

}  // namespace PrinterDiscoverAPI
