// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gmock/gmock.h>

#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"

namespace PrinterWifiApiStruct {

inline void PrintTo(const WlanInfoData& network, std::ostream* out) {
    *out << testing::PrintToString(network.ssid) << " quality " << network.attributes.signalQuality
         << " security " << network.attributes.security << (network.excludeFlag ? " excluded" : "");
}

}  // namespace PrinterWifiApiStruct

namespace HostTest {

using PrinterWifiApiStruct::WLAN_SECURITY_WEP;
using PrinterWifiApiStruct::WLAN_SECURITY_WPA_ENTERPRISE;
using PrinterWifiApiStruct::WLAN_SECURITY_WPA_PERSONAL;
using Networks = std::vector<PrinterWifiApiStruct::WlanInfoData>;

inline constexpr std::uint32_t kOpen = 0;

MATCHER_P4(IsNetwork, ssid, quality, security, excluded, "") {
    return arg.ssid == ssid && arg.attributes.signalQuality == quality &&
           arg.attributes.security == static_cast<std::uint32_t>(security) &&
           arg.excludeFlag == excluded;
}

}  // namespace HostTest
