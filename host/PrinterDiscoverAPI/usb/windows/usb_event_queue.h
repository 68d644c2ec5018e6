// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

// Passes device events from the system's callback to the waiting thread.
class UsbEventQueue {
public:
    void Put(const UsbEvent& event);
    // Records that an event was lost: after the queued events, Wait returns a `missed` event.
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
