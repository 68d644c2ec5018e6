// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <string>

#include "platform/PrinterDiscoverAPI/export.h"

// The ping of PrinterPing, for applications that show why no request was sent.
namespace PrinterDiscoverAPI {

enum class PingOutcome {
    kAnswered,
    kSilent,   // the request was sent but not answered in time
    kNotAsked  // no echo request could be sent: `problem` says why
};

struct PingReport {
    PingOutcome outcome = PingOutcome::kNotAsked;
    std::string problem;  // one line of UTF-8; empty unless the outcome is kNotAsked
};

// Pings once like PrinterPing::Ping, but logs nothing. Safe from any thread.
PRINTERDISCOVERAPI_API PingReport DescribePing(const std::string& address, std::uint32_t timeout);

}  // namespace PrinterDiscoverAPI
