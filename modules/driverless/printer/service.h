// SPDX-License-Identifier: Apache-2.0

#pragma once

// A printer's announcements on the network.

#include <array>
#include <compare>
#include <cstdint>
#include <map>
#include <string>

namespace Driverless {

enum class ServiceKind : std::uint16_t {
    None = 0,
    Ipp = 1,
    Ipps = 2,
    PdlDatastream = 3,
    Lpd = 4,
    Usb = 5,  // no service: the printer is on USB
};

struct ServiceType {
    ServiceKind kind;
    const char* name;
};
constexpr std::array<ServiceType, 4> kServiceTypes{{
    {ServiceKind::Ipp, "_ipp._tcp"},
    {ServiceKind::Ipps, "_ipps._tcp"},
    {ServiceKind::PdlDatastream, "_pdl-datastream._tcp"},
    {ServiceKind::Lpd, "_printer._tcp"},
}};

constexpr const char* TypeName(ServiceKind kind) {
    for (const ServiceType& type : kServiceTypes) {
        if (type.kind == kind) {
            return type.name;
        }
    }
    return "";
}

constexpr bool SpeaksIpp(ServiceKind kind) {
    return kind == ServiceKind::Ipp || kind == ServiceKind::Ipps;
}

// Identifies one announcement. A printer makes one for each of its protocols, and each arrives once
// on each of the host's interfaces.
struct ServiceId {
    std::string name;
    std::string domain;
    ServiceKind kind = ServiceKind::None;
    int interface = -1;

    // clang-tidy mistakes the operator for a comparison with a literal 0.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(const ServiceId&) const = default;
};

// The place of a service and its TXT record, whose keys are in lower case.
struct Service {
    std::string host;
    std::string address;
    std::uint16_t port = 0;
    std::map<std::string, std::string> txt;
};

}  // namespace Driverless
