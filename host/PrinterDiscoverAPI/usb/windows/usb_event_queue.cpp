// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_event_queue.h"

namespace PrinterDiscoverAPI {

void UsbEventQueue::Put(const UsbEvent& event) {
    const std::lock_guard lock(mutex);
    events.push_back(event);
    changed.notify_one();
}

void UsbEventQueue::Lose() {
    const std::lock_guard lock(mutex);
    hasLost = true;
    changed.notify_one();
}

UsbEvent UsbEventQueue::Wait() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return interrupted || hasLost || !events.empty(); });
    if (interrupted) {
        return {UsbEvent::Kind::interrupted, {}};
    }
    // The reader now lists the printers again: no older event may follow.
    if (events.empty()) {
        hasLost = false;
        return {UsbEvent::Kind::missed, {}};
    }
    const UsbEvent event = events.front();
    events.pop_front();
    return event;
}

void UsbEventQueue::Interrupt() {
    const std::lock_guard lock(mutex);
    interrupted = true;
    changed.notify_one();
}

}  // namespace PrinterDiscoverAPI
