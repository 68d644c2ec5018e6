#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

// Takes device events from where the system calls and keeps them for the one who waits.
class UsbEventQueue {
public:
    void Put(const UsbEvent& event);
    // An event could not be kept: once the others are taken, Wait says that some were missed.
    void Lose();
    UsbEvent Wait();
    void Interrupt();

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<UsbEvent> events;
    bool hasLost = false;
    bool interrupted = false;
};

}  // namespace PrinterDiscoverAPI
