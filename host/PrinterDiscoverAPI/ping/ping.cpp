// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/ping/ping.h"

#include <algorithm>
#include <atomic>
#include <random>
#include <string>

#include "base/text/utf8.h"
#include "host/PrinterDiscoverAPI/diagnostics.h"
#include "host/PrinterDiscoverAPI/ping_report.h"

namespace {

constexpr std::wstring_view kWhere = L"PrinterPing::Ping";

// Logged only once, because later calls cannot succeed either.
void ReportNotAllowed(const std::string& reason) {
    static std::atomic<bool> reported = false;
    if (!reported.exchange(true)) {
        Host::Report(LOG_LEVEL_ERROR, Base::FromUtf8(reason), kWhere);
    }
}

void ReportFailure(const Host::Echo& echo, const char* address) {
    switch (echo.result) {
        case Host::EchoResult::kBadAddress:
            Host::Report(LOG_LEVEL_ERROR,
                         L'"' + Base::FromUtf8(address) + L"\" is not an IPv4 address", kWhere);
            return;
        case Host::EchoResult::kNotAllowed:
            ReportNotAllowed(echo.reason);
            return;
        case Host::EchoResult::kNotAsked:
            Host::Report(LOG_LEVEL_WARNING,
                         Base::FromUtf8(std::string("cannot ping ") + address + ": " + echo.reason),
                         kWhere);
            return;
        default:
            return;
    }
}

}  // namespace

namespace Host {

EchoPayload UniqueEchoPayload() {
    std::random_device device;
    EchoPayload payload;
    std::generate(payload.begin(), payload.end(), [&] { return device(); });
    return payload;
}

}  // namespace Host

namespace PrinterDiscoverAPI {

PrinterPing& PrinterPing::GetInstance() {
    static PrinterPing& instance = *new PrinterPing;
    return instance;
}

int PrinterPing::Ping(const char* address, PingReply* reply, std::uint32_t timeout) {
    if (address == nullptr) {
        Host::Report(LOG_LEVEL_ERROR, L"no address", kWhere);
        return 0;
    }
    const Host::Echo echo = Host::SendEcho(address, std::chrono::milliseconds(timeout));
    if (echo.result != Host::EchoResult::kAnswered) {
        ReportFailure(echo, address);
        return 0;
    }
    if (reply != nullptr) {
        *reply = echo.reply;
    }
    return 1;
}

PingReport DescribePing(const std::string& address, std::uint32_t timeout) {
    const Host::Echo echo = Host::SendEcho(address.c_str(), std::chrono::milliseconds(timeout));
    switch (echo.result) {
        case Host::EchoResult::kAnswered:
            return {PingOutcome::kAnswered, {}};
        case Host::EchoResult::kSilent:
            return {PingOutcome::kSilent, {}};
        case Host::EchoResult::kBadAddress:
            return {PingOutcome::kNotAsked, '"' + address + "\" is not an IPv4 address"};
        default:
            return {PingOutcome::kNotAsked, echo.reason};
    }
}

}  // namespace PrinterDiscoverAPI
