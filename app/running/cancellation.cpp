// SPDX-License-Identifier: Apache-2.0

#include "app/running/cancellation.h"

#include "app/items/network.h"
#include "app/items/printer.h"
#include "app/items/usb_printer.h"
#include "app/running/stopping.h"
#include "app/terminal/interrupt.h"

namespace App {

void CancelOnInterrupt() {
    static std::once_flag once;
    std::call_once(once, [] {
        NotifyOnInterrupt([] {
            PrinterList::GetInstance().Cancel();
            NetworkList::GetInstance().Cancel();
            ArrivalList::GetInstance().Cancel();
            Cancellation::GetInstance().Cancel();
            SayThatItStops();
        });
    });
}

Cancellation& Cancellation::GetInstance() {
    static Cancellation& cancellation = *new Cancellation;
    return cancellation;
}

void Cancellation::Cancel() {
    const std::lock_guard lock(mutex);
    cancelled = true;
    changed.notify_all();
}

void Cancellation::Check() const {
    const std::lock_guard lock(mutex);
    if (cancelled) {
        throw Interrupted();
    }
}

bool Cancellation::WaitUntil(Clock::time_point until, const std::function<bool()>& isDone) {
    std::unique_lock lock(mutex);
    changed.wait_until(lock, until, [&] { return cancelled || isDone(); });
    const bool done = isDone();
    if (!done && cancelled) {
        throw Interrupted();
    }
    return done;
}

bool Cancellation::WaitRegardless(Clock::time_point until, const std::function<bool()>& isDone) {
    std::unique_lock lock(mutex);
    return changed.wait_until(lock, until, isDone);
}

void Cancellation::Notify(const std::function<void()>& change) {
    const std::lock_guard lock(mutex);
    change();
    changed.notify_all();
}

}  // namespace App
