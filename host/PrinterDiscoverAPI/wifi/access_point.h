// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace Host {

// How an access point is protected: a sum of these, 0 for an open one.
enum Protection : unsigned {
    kWep = 1,
    kWpaPersonal = 2,
    kWpa2Personal = 4,
    kWpa3Personal = 8,
    kEnterprise = 16,
    kOpportunistic = 32  // encrypted without a pass phrase (OWE)
};
inline constexpr unsigned kAnyPersonal = kWpaPersonal | kWpa2Personal | kWpa3Personal;

// An access point that the host receives.
struct AccessPoint {
    std::string name;  // the bytes it broadcasts; empty when it hides its name
    int quality = 0;   // 0 to 100
    unsigned protection = 0;
    bool aesWithWpa = false;     // for WPA version 1: AES is supported, not only TKIP
    bool infrastructure = true;  // neither ad hoc nor offered by this host
    std::string adapter;         // the Wi-Fi service's name for the receiving adapter
    std::string identity;        // the Wi-Fi service's name for the access point
};

// The access point that the host is joined to.
struct JoinedAccessPoint {
    std::string name;
    std::string hardwareAddress;  // "00:11:22:33:44:55", digits in upper case
    std::wstring interfaceName;
};

}  // namespace Host
