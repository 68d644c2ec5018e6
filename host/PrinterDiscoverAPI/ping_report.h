#pragma once

#include <cstdint>
#include <string>

#include "platform/PrinterDiscoverAPI/export.h"

// The ping behind PrinterPing, for applications that show why nothing was asked.
namespace PrinterDiscoverAPI {

enum class PingOutcome {
    kAnswered,
    kSilent,   // the address was asked and did not answer in time
    kNotAsked  // no echo request could be sent: `problem` says why
};

struct PingReport {
    PingOutcome outcome = PingOutcome::kNotAsked;
    std::string problem;  // one line of UTF-8; empty unless the outcome is kNotAsked
};

// Pings once, as PrinterPing::Ping does, and logs nothing. Safe from any thread.
PRINTERDISCOVERAPI_API PingReport DescribePing(const std::string& address, std::uint32_t timeout);

}  // namespace PrinterDiscoverAPI
