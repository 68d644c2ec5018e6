#pragma once

// What the vendors are doing: each call of a vendor's entry point, under way or done. An
// application that waits too long, or that dies, can name the vendor with it.
//
// The library keeps the calls in a table of a fixed number of rows. A row belongs to one entry
// point of one vendor; its latest call replaces the one before, and calls of one entry point that
// run side by side have a row each. So what an entry point returned last can still be read when it
// has long returned. Calls that find no row are made all the same, and only counted.
//
// Everything here may be called from any thread at any time, also from a signal handler, while the
// process ends, and while vendors are called: nothing is locked, allocated or logged.

#include <cstddef>
#include <cstdint>

#include "DeviceDiscover/export.h"

namespace PrinterDeviceDiscoverSdk {

enum class VendorCallState : std::int32_t {
    kUnderWay = 0,
    kReturned = 1,
    kLeftByException = 2,  // or by the end of its thread
};

// One call of a vendor's entry point. It crosses the library's border: its layout is fixed.
struct VendorCall {
    char productId[64];     // the vendor; a longer one is cut off
    char entryPoint[32];    // the name that the vendor's module exports
    std::uint64_t began;    // nanoseconds on the clock of std::chrono::steady_clock
    VendorCallState state;  // what `result` and `isOnThisThread` mean depends on it
    std::int32_t result;    // the vendor's own; 0 unless it has returned
    bool isOnThisThread;    // under way on the thread that reads this
};
static_assert(sizeof(VendorCall) == 120 && alignof(VendorCall) == 8);
static_assert(offsetof(VendorCall, productId) == 0 && offsetof(VendorCall, entryPoint) == 64);
static_assert(offsetof(VendorCall, began) == 96 && offsetof(VendorCall, state) == 104);
static_assert(offsetof(VendorCall, result) == 108 && offsetof(VendorCall, isOnThisThread) == 112);

// How many rows the table has: always the same.
DEVICEDISCOVER_API std::size_t VendorCallRows();

// Reads the call in that row into `call`; false, with `call` untouched, when the row holds none, or
// its vendor calls so fast that none could be read.
DEVICEDISCOVER_API bool ReadVendorCall(std::size_t row, VendorCall& call);

// How many calls found no row, since the process began.
DEVICEDISCOVER_API std::uint64_t UnrecordedVendorCalls();

// From now on each thread that the library starts to call a vendor calls `prepare` first, which
// must not throw: it can give the thread a stack for signal handlers, or a name. Null: nothing.
DEVICEDISCOVER_API void PrepareVendorThreads(void (*prepare)());

}  // namespace PrinterDeviceDiscoverSdk
