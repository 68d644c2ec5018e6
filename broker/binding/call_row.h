// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "DeviceDiscover/vendor_activity.h"

namespace Broker {

// One row of the call table: one entry point of one vendor, and its latest call. The thread that
// has taken the row writes it. Any thread may read it at the same time, also a signal handler on
// the writing thread.
class CallRow {
public:
    using Call = PrinterDeviceDiscoverSdk::VendorCall;
    using CallState = PrinterDeviceDiscoverSdk::VendorCallState;

    // Takes the row for a call that begins on this thread. False when the row belongs to another
    // entry point, or its call is still running.
    bool Take(std::string_view productId, const char* entryPoint);

    // Records how the call ended for which the row was taken.
    void End(CallState state, int result);

    // See ReadVendorCall.
    bool Read(Call& call) const;

private:
    // The phase of the row. It cycles through the last three. `progress` also counts the calls, in
    // its upper bits, so that a reader notices a call in between.
    enum Phase : std::uint64_t { kNew, kBeginning, kUnderWay, kEnded };
    static constexpr unsigned kPhaseBits = 2;
    static constexpr std::uint64_t kPhaseMask = (1u << kPhaseBits) - 1;

    bool IsOf(std::string_view productId, const char* entryPoint) const;
    void Own(std::string_view productId, const char* entryPoint);
    void Copy(Call& call, Phase phase) const;

    // Written once, before the row leaves kNew for good.
    char vendor[sizeof Call::productId] = {};
    std::size_t vendorLength = 0;
    const char* exportName = nullptr;

    std::atomic<std::uint64_t> progress = kNew;  // the number of calls and the phase
    std::atomic<std::uint64_t> began = 0;
    std::atomic<std::uint64_t> thread = 0;
    std::atomic<CallState> ending = CallState::kUnderWay;
    std::atomic<std::int32_t> result = 0;
    static_assert(std::atomic<std::uint64_t>::is_always_lock_free, "signal handlers read it");
    static_assert(std::atomic<CallState>::is_always_lock_free, "signal handlers read it");
};

}  // namespace Broker
