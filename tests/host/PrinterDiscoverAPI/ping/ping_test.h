// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "platform/PrinterDiscoverAPI/PrinterPing.h"

namespace HostTest {

// What a ping came to, and how long it took.
struct Pinged {
    int result;
    PrinterDiscoverAPI::PingReply reply;
    double milliseconds;
};

// A reply that nothing has been written to.
inline constexpr PrinterDiscoverAPI::PingReply kUntouched{0xAAAAAAAA, 0xBBBBBBBB, 0xCCCCCCCC,
                                                          0xDDDDDDDD};

inline Pinged Ping(const char* address, std::uint32_t timeout) {
    using Clock = std::chrono::steady_clock;
    Pinged pinged{0, kUntouched, 0};
    const auto start = Clock::now();
    pinged.result =
        PrinterDiscoverAPI::PrinterPing::GetInstance().Ping(address, &pinged.reply, timeout);
    pinged.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    return pinged;
}

inline bool IsUntouched(const PrinterDiscoverAPI::PingReply& reply) {
    return reply.address == kUntouched.address && reply.roundTripTime == kUntouched.roundTripTime &&
           reply.timeToLive == kUntouched.timeToLive && reply.dataSize == kUntouched.dataSize;
}

// An address as a reply has it.
inline std::uint32_t NetworkOrder(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    return a | std::uint32_t{b} << 8 | std::uint32_t{c} << 16 | std::uint32_t{d} << 24;
}

// Changes a setting of this program's own network.
void ChangeNetwork(const std::string& setting, const std::string& value);

// Pings that ended in time take up to this much longer than was asked.
inline constexpr double kSlack = 20;

// What the system's clock may be behind.
inline constexpr double kTick = 1.5;

// Pings until one has ended in time, which a busy machine can keep some of them from; how many
// there were.
inline int ExpectSilence(const char* host, std::uint32_t timeout) {
    constexpr int most = 5;
    for (int count = 1;; ++count) {
        const Pinged pinged = Ping(host, timeout);
        EXPECT_EQ(pinged.result, 0);
        EXPECT_TRUE(IsUntouched(pinged.reply));
        EXPECT_GE(pinged.milliseconds, timeout - kTick);
        if (pinged.milliseconds <= timeout + kSlack || count == most) {
            EXPECT_LE(pinged.milliseconds, timeout + kSlack);
            return count;
        }
    }
}

}  // namespace HostTest
