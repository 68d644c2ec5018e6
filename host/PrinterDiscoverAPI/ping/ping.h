#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

#include "platform/PrinterDiscoverAPI/PrinterPing.h"

namespace Host {

enum class EchoResult {
    kAnswered,    // by the target, with what was sent
    kSilent,      // no answer in time, or the network said that there will be none
    kBadAddress,  // the text is no IPv4 address
    kNotAllowed,  // this program may not send echo requests
    kNotAsked     // the request could not be sent
};

struct Echo {
    EchoResult result;
    PrinterDiscoverAPI::PingReply reply;  // when answered
    std::string reason;                   // when not allowed or not asked
};

// What an echo request carries: different each time, so that no other reply is taken for its own.
using EchoPayload = std::array<std::uint32_t, 8>;
EchoPayload UniqueEchoPayload();

// Sends one echo request to `address` and waits for its reply until `timeout` is over. The system's
// side of the ping; any number of threads may use it at the same time.
Echo SendEcho(const char* address, std::chrono::milliseconds timeout);

}  // namespace Host
