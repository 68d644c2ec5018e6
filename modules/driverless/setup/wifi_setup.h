#pragma once

#include "VendorSdk/records.h"

namespace Driverless {

// Gives the printer whose own network the host is joined to the network in the record, and waits
// for the outcome. PrinterAPNetConfigEvent's result.
int SetUpWifi(const VendorSdk::WifiConfigInfo& record);

// The same for the printer on USB that `device` describes, through the bridge that has it.
// PrinterUSBNetConfigEvent's result.
int SetUpWifiOverUsb(const VendorSdk::DeviceInfo& device, const VendorSdk::WifiConfigInfo& record);

}  // namespace Driverless
