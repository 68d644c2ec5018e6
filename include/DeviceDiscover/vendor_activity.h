// SPDX-License-Identifier: Apache-2.0

#pragma once

// The calls of the vendors' entry points, running or finished. With them an application that waits
// too long, or crashes, can name the vendor.
//
// The library records the calls in a table with a fixed number of rows. A row belongs to one entry
// point of one vendor and keeps its latest call, so the last result of an entry point stays
// readable. Concurrent calls of the same entry point have a row each. When no row is free the call
// is still made, but only counted.
//
// These functions may be called from any thread at any time, also from a signal handler, during
// process exit and during calls of vendors: they lock, allocate and log nothing.

#include <cstddef>
#include <cstdint>

#include "DeviceDiscover/export.h"

namespace PrinterDeviceDiscoverSdk {

enum class VendorCallState : std::int32_t {
    kUnderWay = 0,
    kReturned = 1,
    kLeftByException = 2,  // or because its thread ended
};

// One call of a vendor's entry point. It is passed between libraries: its layout is fixed.
struct VendorCall {
    char productId[64];     // the vendor; truncated if longer
    char entryPoint[32];    // the exported name
    std::uint64_t began;    // by VendorCallClock
    VendorCallState state;  // decides what the next two fields mean
    std::int32_t result;    // the vendor's result; 0 unless the call has returned
    bool isOnThisThread;    // running on the thread that reads this
};
static_assert(sizeof(VendorCall) == 120 && alignof(VendorCall) == 8);
static_assert(offsetof(VendorCall, productId) == 0 && offsetof(VendorCall, entryPoint) == 64);
static_assert(offsetof(VendorCall, began) == 96 && offsetof(VendorCall, state) == 104);
static_assert(offsetof(VendorCall, result) == 108 && offsetof(VendorCall, isOnThisThread) == 112);

// The present time for VendorCall::began: nanoseconds on a clock that never goes back. It advances
// every few milliseconds (at most 16). A call that begins later has at least this time.
DEVICEDISCOVER_API std::uint64_t VendorCallClock();

// The number of rows of the table. It never changes.
DEVICEDISCOVER_API std::size_t VendorCallRows();

// Reads the call in row `row` into `call`. False, with `call` untouched, when the row is empty, or
// when its calls change too fast to be read.
DEVICEDISCOVER_API bool ReadVendorCall(std::size_t row, VendorCall& call);

// The number of calls since the start of the process for which no row was free.
DEVICEDISCOVER_API std::uint64_t UnrecordedVendorCalls();

// Sets a function that each thread started from now on to call a vendor runs first, for example to
// install a signal stack or to set the thread's name. `prepare` must not throw; null removes it.
DEVICEDISCOVER_API void PrepareVendorThreads(void (*prepare)());

}  // namespace PrinterDeviceDiscoverSdk
