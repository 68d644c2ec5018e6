// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/hostnet.h"
#include "broker/log/log_line.h"
#include "platform/PrinterDiscoverAPI/PrinterPing.h"

namespace DeviceDiscover {

namespace {

constexpr int kAttempts = 3;
constexpr std::uint32_t kTimeoutMilliseconds = 100;

}  // namespace

PrinterNetInterface& PrinterNetInterface::GetInstance() {
    static PrinterNetInterface instance;
    return instance;
}

PrinterNetInterface::PrinterNetInterface() = default;

PrinterNetInterface::~PrinterNetInterface() = default;

bool PrinterNetInterface::CheckPing(const std::string& address) {
    Broker::Log(LOG_LEVEL_WARNING, HERE, "start");
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        PrinterDiscoverAPI::PingReply reply;
        if (PrinterDiscoverAPI::PrinterPing::GetInstance().Ping(address.c_str(), &reply,
                                                                kTimeoutMilliseconds) != 0) {
            return true;
        }
    }
    Broker::Log(LOG_LEVEL_ERROR, HERE, "ping failed");
    return false;
}

}  // namespace DeviceDiscover
