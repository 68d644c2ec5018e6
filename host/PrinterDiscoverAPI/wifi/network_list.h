#pragma once

#include <vector>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"
#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace Host {

// The networks that the access points make, as PrinterWifiAPI::ScanWifiAPBySsid gives them.
std::vector<PrinterWifiApiStruct::WlanInfoData> NetworksOf(std::vector<AccessPoint> accessPoints);

}  // namespace Host
