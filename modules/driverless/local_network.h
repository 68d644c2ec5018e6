#pragma once

#include "VendorSdk/records.h"

namespace Driverless {

// Whether the record's printer is announced on the local network and answers there.
// IsLocalAreaNetworkOK's result.
int IsOnLocalNetwork(const VendorSdk::DeviceInfo& record);

}  // namespace Driverless
