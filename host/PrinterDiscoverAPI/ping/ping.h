// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

#include "platform/PrinterDiscoverAPI/PrinterPing.h"

namespace Host {

enum class EchoResult {
    kAnswered,    // the target returned the payload
    kSilent,      // no answer in time, or the target is unreachable
    kBadAddress,  // the text is not an IPv4 address
    kNotAllowed,  // this program may not send echo requests
    kNotAsked     // the request could not be sent
};

struct Echo {
    EchoResult result;
    PrinterDiscoverAPI::PingReply reply;  // set for kAnswered
    std::string reason;                   // set for kNotAllowed and kNotAsked
};

// The data of an echo request: different each time, so that a reply to another request never
// matches.
using EchoPayload = std::array<std::uint32_t, 8>;
EchoPayload UniqueEchoPayload();

// Sends one echo request to `address` and waits up to `timeout` for its reply. Any number of
// threads may call this at the same time.
Echo SendEcho(const char* address, std::chrono::milliseconds timeout);

}  // namespace Host
