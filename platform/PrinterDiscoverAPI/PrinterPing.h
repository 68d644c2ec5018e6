// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

#include "platform/PrinterDiscoverAPI/export.h"

namespace PrinterDiscoverAPI {

// The contents of an echo reply. DeviceDiscover does not read them.
struct PingReply {
    std::uint32_t address;        // of the sender: IPv4, network byte order
    std::uint32_t roundTripTime;  // milliseconds, rounded down
    std::uint32_t timeToLive;     // TTL of the reply
    std::uint32_t dataSize;       // bytes of data in the reply
};
static_assert(sizeof(PingReply) == 16 && alignof(PingReply) == 4);

// The application's ping service, from the library PrinterDiscoverAPI. A replacement of the library
// provides this class.
class PRINTERDISCOVERAPI_API PrinterPing {
public:
    static PrinterPing& GetInstance();

    // Sends one ICMP echo request to `address`, an IPv4 address in dotted text, and waits up to
    // `timeout` milliseconds for the reply to this request. Returns non-zero and fills `reply` when
    // the target answered. Returns 0 and leaves `reply` untouched when no reply came, when the
    // network reported that the target is unreachable, or when the request could not be sent. The
    // reason is logged; a missing permission to ping is logged once per process. A null `address`
    // gives 0; `reply` may be null. Any number of threads may ping at the same time.
    int Ping(const char* address, PingReply* reply, std::uint32_t timeout);

    PrinterPing(const PrinterPing&) = delete;
    PrinterPing& operator=(const PrinterPing&) = delete;

private:
    PrinterPing() = default;
    ~PrinterPing() = default;
};

}  // namespace PrinterDiscoverAPI
