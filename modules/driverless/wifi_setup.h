#pragma once

#include "VendorSdk/records.h"

namespace Driverless {

// Gives the printer whose own network the host is joined to the network in the record, and waits
// for the outcome. PrinterAPNetConfigEvent's result.
int SetUpWifi(const VendorSdk::WifiConfigInfo& record);

}  // namespace Driverless
