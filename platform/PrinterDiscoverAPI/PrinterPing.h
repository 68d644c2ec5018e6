#pragma once

#include <cstdint>

#include "platform/PrinterDiscoverAPI/export.h"

namespace PrinterDiscoverAPI {

// What an echo reply said. The callers here do not read it.
struct PingReply {
    std::uint32_t address;        // who answered: IPv4, network byte order
    std::uint32_t roundTripTime;  // milliseconds, rounded down
    std::uint32_t timeToLive;     // of the reply
    std::uint32_t dataSize;       // bytes that came back
};
static_assert(sizeof(PingReply) == 16 && alignof(PingReply) == 4);

// The application's ping service, of the library PrinterDiscoverAPI. Whoever replaces that library
// provides this class.
class PRINTERDISCOVERAPI_API PrinterPing {
public:
    static PrinterPing& GetInstance();

    // Sends one ICMP echo request to `address`, IPv4 in dotted text, and waits up to `timeout`
    // milliseconds for its reply; nothing but that reply counts. Non-zero when the target answered,
    // with `reply` filled; 0, with `reply` untouched, when it did not, when the network said that
    // it will not, or when it could not be asked: why not is logged, and once for all when this
    // program may not ping. A null `address` gives 0; `reply` may be null. Any number of threads
    // may ping at the same time.
    int Ping(const char* address, PingReply* reply, std::uint32_t timeout);

    PrinterPing(const PrinterPing&) = delete;
    PrinterPing& operator=(const PrinterPing&) = delete;

private:
    PrinterPing() = default;
    ~PrinterPing() = default;
};

}  // namespace PrinterDiscoverAPI
