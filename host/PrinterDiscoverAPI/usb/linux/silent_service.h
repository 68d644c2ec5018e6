// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

// Compares the kernel's device events with those that the system's device service passes on. A
// service that is stopped or was killed passes on no events and reports no error; then the kernel's
// events count. Events are matched by their numbers, in any order.
class SilentService {
public:
    using Clock = std::chrono::steady_clock;
    // The service takes a moment to apply its rules before it passes an event on.
    static constexpr std::chrono::seconds kPatience{3};

    void ToldByKernel(std::uint64_t number, const UsbEvent& event, Clock::time_point now);
    // False when the kernel's event was already used and must not count twice.
    bool ToldByService(std::uint64_t number);

    // The next event that the service has not passed on in time, if any. After the first such event
    // the service counts as silent: later events are overdue at once, until the service passes on
    // an event again.
    std::optional<UsbEvent> TakeOverdue(Clock::time_point now);
    // The time at which the next event becomes overdue.
    std::optional<Clock::time_point> NextOverdue() const;
    bool IsSilent() const { return isSilent; }

    std::size_t Remembered() const { return waiting.size() + taken.size() + early.size(); }

private:
    struct Waiting {
        std::uint64_t number;
        UsbEvent event;
        Clock::time_point end;
    };

    std::deque<Waiting> waiting;         // seen from the kernel only
    std::multiset<std::uint64_t> taken;  // seen from the kernel only, overdue and used
    std::multiset<std::uint64_t> early;  // seen from the service only
    bool isSilent = false;
};

}  // namespace PrinterDiscoverAPI
