// SPDX-License-Identifier: Apache-2.0

// What is logged of pings that fail, with the system's side played by the test.

#include "host/PrinterDiscoverAPI/ping_report.h"
#include "host/PrinterDiscoverAPI/ping/ping.h"
#include "tests/host/PrinterDiscoverAPI/logged.h"
#include "tests/host/PrinterDiscoverAPI/ping/ping_test.h"

namespace {

Host::Echo nextEcho{};

}  // namespace

Host::Echo Host::SendEcho(const char*, std::chrono::milliseconds) {
    return nextEcho;
}

namespace HostTest {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;

void ExpectNoReply(Host::EchoResult result, const std::string& reason = {}) {
    nextEcho = {result, {}, reason};
    const Pinged pinged = Ping("192.0.2.1", 1);
    EXPECT_EQ(pinged.result, 0);
    EXPECT_TRUE(IsUntouched(pinged.reply));
}

TEST(PingReport, OfWhatIsNotAllowed_IsGivenOnce) {
    for (int round = 0; round < 3; ++round) {
        ExpectNoReply(Host::EchoResult::kNotAllowed, "ping is not allowed: error 5");
    }
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR, L"ping is not allowed: error 5")));
}

TEST(PingReport, OfWhatCannotBeSent_IsGivenEachTime) {
    for (int round = 0; round < 2; ++round) {
        ExpectNoReply(Host::EchoResult::kNotAsked, "error 1231");
        EXPECT_THAT(TakeLines(),
                    ElementsAre(AllOf(IsLine(LOG_LEVEL_WARNING, L"cannot ping 192.0.2.1"),
                                      IsLine(LOG_LEVEL_WARNING, L"error 1231"))));
    }
}

TEST(PingReport, OfSilence_IsNone) {
    ExpectNoReply(Host::EchoResult::kSilent);
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST(PingReport, OnRequest_SaysWhatBecameOfTheRequestAndLogsNothing) {
    using PrinterDiscoverAPI::DescribePing;
    using PrinterDiscoverAPI::PingOutcome;
    nextEcho = {Host::EchoResult::kAnswered, {}, {}};
    EXPECT_EQ(DescribePing("192.0.2.1", 1).outcome, PingOutcome::kAnswered);
    nextEcho = {Host::EchoResult::kSilent, {}, {}};
    EXPECT_EQ(DescribePing("192.0.2.1", 1).outcome, PingOutcome::kSilent);
    EXPECT_EQ(DescribePing("192.0.2.1", 1).problem, "");
    for (const auto result : {Host::EchoResult::kNotAllowed, Host::EchoResult::kNotAsked}) {
        nextEcho = {result, {}, "the reason"};
        EXPECT_EQ(DescribePing("192.0.2.1", 1).outcome, PingOutcome::kNotAsked);
        EXPECT_EQ(DescribePing("192.0.2.1", 1).problem, "the reason");
    }
    nextEcho = {Host::EchoResult::kBadAddress, {}, {}};
    EXPECT_EQ(DescribePing("here", 1).outcome, PingOutcome::kNotAsked);
    EXPECT_EQ(DescribePing("here", 1).problem, "\"here\" is not an IPv4 address");
    EXPECT_THAT(TakeLines(), IsEmpty());
}

}  // namespace

}  // namespace HostTest
