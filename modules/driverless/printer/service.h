#pragma once

// What a printer announces of itself on the network.

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

// One announcement. The same printer announces one for each protocol it speaks, and each is seen
// once for each of the host's interfaces that it comes in by.
struct ServiceId {
    std::string name;
    std::string domain;
    ServiceKind kind = ServiceKind::None;
    int interface = -1;

    // The check takes the operator for a comparison with a literal 0.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(const ServiceId&) const = default;
};

// Where the service is, and what its TXT record says; the record's keys are in lower case.
struct Service {
    std::string host;
    std::string address;
    std::uint16_t port = 0;
    std::map<std::string, std::string> txt;
};

}  // namespace Driverless
