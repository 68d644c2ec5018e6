// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace Host {

// Groups the access points into networks, in the form of PrinterWifiAPI::ScanWifiAPBySsid.
std::vector<PrinterWifiApiStruct::WlanInfoData> NetworksOf(std::vector<AccessPoint> accessPoints);

}  // namespace Host
