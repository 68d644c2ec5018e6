#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>

#include "host/PrinterDiscoverAPI/usb/usb_manager.h"

namespace PrinterDiscoverAPI {

// Compares what the kernel tells with what the system's device service passes on. A service that is
// stopped, or was killed, passes nothing on and says nothing either: then the kernel's events
// count. Events are matched by their numbers, in whichever order the two tell them.
class SilentService {
public:
    using Clock = std::chrono::steady_clock;
    // The service applies its rules first, which takes it a moment.
    static constexpr std::chrono::seconds kPatience{3};

    void ToldByKernel(std::uint64_t number, const UsbEvent& event, Clock::time_point now);
    // False when the kernel's event has been taken already: it must not count twice.
    bool ToldByService(std::uint64_t number);

    // The next event that the service has not passed on in time, if any. From the first of them on
    // the service counts as silent, and is not waited for until it tells something again.
    std::optional<UsbEvent> TakeOverdue(Clock::time_point now);
    // When the next event is overdue, if none comes meanwhile.
    std::optional<Clock::time_point> NextOverdue() const;
    bool IsSilent() const { return isSilent; }

    std::size_t Remembered() const { return waiting.size() + taken.size() + early.size(); }

private:
    struct Waiting {
        std::uint64_t number;
        UsbEvent event;
        Clock::time_point end;
    };

    std::deque<Waiting> waiting;         // told by the kernel alone
    std::multiset<std::uint64_t> taken;  // told by the kernel alone, and overdue
    std::multiset<std::uint64_t> early;  // told by the service alone
    bool isSilent = false;
};

}  // namespace PrinterDiscoverAPI
