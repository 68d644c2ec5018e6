#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DeviceDiscover/vendor_activity.h"

namespace App {

using PrinterDeviceDiscoverSdk::VendorCall;
using PrinterDeviceDiscoverSdk::VendorCallState;

// The moment now, as calls tell when they began.
std::uint64_t CallClockNow();

// What the broker knows of the vendors' calls, each entry point's latest at least.
std::vector<VendorCall> VendorCalls();

// The calls under way that began at `since` or later, but for scans: those run until they are told
// to stop, and nobody waits for them.
std::vector<VendorCall> AwaitedCalls(std::uint64_t since = 0);

// Whether any vendor is being called, for a scan or for anything else.
bool AnyVendorIsCalled();

// "vendor alpha (StopDeviceScan) and vendor beta (GetDeviceConnectState)"; empty without calls.
std::string NamesOf(const std::vector<VendorCall>& calls);

}  // namespace App
