// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "VendorSdk/records.h"

namespace Driverless {

// Sends the network in `record` to the printer whose own network the host is joined to, and waits
// for the outcome. Returns PrinterAPNetConfigEvent's result.
int SetUpWifi(const VendorSdk::WifiConfigInfo& record);

// The same for the printer on USB that `device` describes, through its bridge. Returns
// PrinterUSBNetConfigEvent's result.
int SetUpWifiOverUsb(const VendorSdk::DeviceInfo& device, const VendorSdk::WifiConfigInfo& record);

}  // namespace Driverless
