// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/linux/silent_service.h"

#include <algorithm>

namespace PrinterDiscoverAPI {

namespace {

using Numbers = std::multiset<std::uint64_t>;

// The number of remembered events; older events are no longer waited for.
constexpr std::size_t kMaxNumbers = 1024;

void Remember(Numbers& numbers, std::uint64_t number) {
    numbers.insert(number);
    if (numbers.size() > kMaxNumbers) {
        numbers.erase(numbers.begin());  // the oldest: the kernel counts its events
    }
}

bool Forget(Numbers& numbers, std::uint64_t number) {
    const auto found = numbers.find(number);
    if (found == numbers.end()) {
        return false;
    }
    numbers.erase(found);
    return true;
}

}  // namespace

void SilentService::ToldByKernel(std::uint64_t number, const UsbEvent& event,
                                 Clock::time_point now) {
    if (!Forget(early, number)) {
        waiting.push_back({number, event, isSilent ? now : now + kPatience});
    }
}

bool SilentService::ToldByService(std::uint64_t number) {
    isSilent = false;
    if (Forget(taken, number)) {
        return false;
    }
    const auto found = std::find_if(waiting.begin(), waiting.end(),
                                    [number](const Waiting& one) { return one.number == number; });
    if (found == waiting.end()) {
        Remember(early, number);
    } else {
        waiting.erase(found);
    }
    return true;
}

std::optional<UsbEvent> SilentService::TakeOverdue(Clock::time_point now) {
    if (waiting.empty() || (waiting.front().end > now && waiting.size() <= kMaxNumbers)) {
        return std::nullopt;
    }
    isSilent = true;
    const UsbEvent event = waiting.front().event;
    Remember(taken, waiting.front().number);
    waiting.pop_front();
    return event;
}

std::optional<SilentService::Clock::time_point> SilentService::NextOverdue() const {
    return waiting.empty() ? std::nullopt : std::optional(waiting.front().end);
}

}  // namespace PrinterDiscoverAPI
