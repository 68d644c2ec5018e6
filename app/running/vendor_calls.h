// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DeviceDiscover/vendor_activity.h"

namespace App {

using PrinterDeviceDiscoverSdk::VendorCall;
using PrinterDeviceDiscoverSdk::VendorCallClock;
using PrinterDeviceDiscoverSdk::VendorCallState;

// The broker's record of the vendors' calls: at least the latest of each entry point.
std::vector<VendorCall> VendorCalls();

// The running calls that began at `since` (by VendorCallClock) or later, except scans: they run
// until they are stopped, and the program does not wait for them.
std::vector<VendorCall> AwaitedCalls(std::uint64_t since = 0);

// Whether any call of a vendor is running, also a scan.
bool AnyVendorIsCalled();

// "vendor alpha (StopDeviceScan) and vendor beta (GetDeviceConnectState)"; empty without calls.
std::string NamesOf(const std::vector<VendorCall>& calls);

}  // namespace App
