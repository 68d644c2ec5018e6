// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/ping/ping_test.h"

#include <cstdlib>
#include <fstream>
#include <thread>
#include <vector>

#include "tests/host/PrinterDiscoverAPI/logged.h"

namespace HostTest {

void ChangeNetwork(const std::string& setting, const std::string& value) {
    const char* folder = std::getenv("OWN_NETWORK_SETTINGS");
    ASSERT_NE(folder, nullptr) << "not in a network of its own";
    std::ofstream file(std::string(folder) + '/' + setting);
    file << value << std::flush;
    ASSERT_TRUE(file) << setting;
}

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Ping, OfLoopback_IsAnswered) {
    const Pinged pinged = Ping("127.0.0.1", 1000);
    EXPECT_NE(pinged.result, 0);
    EXPECT_EQ(pinged.reply.address, NetworkOrder(127, 0, 0, 1));
    EXPECT_LT(pinged.reply.roundTripTime, 100U);
    EXPECT_EQ(pinged.reply.timeToLive, 64U);
    EXPECT_EQ(pinged.reply.dataSize, 32U);
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST(Ping, NeedsNoRoomForTheReply) {
    auto& service = PrinterDiscoverAPI::PrinterPing::GetInstance();
    EXPECT_NE(service.Ping("127.0.0.1", nullptr, 1000), 0);
}

TEST(Ping, WhereEchoRepliesAreSwitchedOff_EndsWhenTheTimeIsOver) {
    ChangeNetwork("icmp_echo_ignore_all", "1");
    Ping("127.0.0.1", 1);
    for (const std::uint32_t timeout : {20U, 100U, 250U}) {
        ExpectSilence("127.0.0.1", timeout);
    }
    EXPECT_THAT(TakeLines(), IsEmpty());
    ChangeNetwork("icmp_echo_ignore_all", "0");
    EXPECT_NE(Ping("127.0.0.1", 1000).result, 0);
}

TEST(Ping, WithoutTime_EndsAtOnce) {
    ChangeNetwork("icmp_echo_ignore_all", "1");
    ExpectSilence("127.0.0.1", 0);
}

TEST(Ping, OfAnAddressWithoutARoute_FailsAtOnceAndSaysSo) {
    const Pinged pinged = Ping("192.0.2.1", 5000);
    EXPECT_EQ(pinged.result, 0);
    EXPECT_TRUE(IsUntouched(pinged.reply));
    EXPECT_LT(pinged.milliseconds, 1000);
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"cannot ping 192.0.2.1")));
}

TEST(Ping, OfAnAddressWhoseRouteLeadsNowhere_FailsAtOnce) {
    const Pinged pinged = Ping("10.99.2.7", 5000);
    EXPECT_EQ(pinged.result, 0);
    EXPECT_TRUE(IsUntouched(pinged.reply));
    EXPECT_LT(pinged.milliseconds, 1000);
}

TEST(Ping, OfWhatIsNoAddress_FailsAndQuotesIt) {
    for (const std::string address :
         {"", "printer", "1.2.3", "1.2.3.4.5", "256.1.1.1", " 127.0.0.1", "127.0.0.1 ", "::1",
          "0x7f.0.0.1", "127.0.0.1:631", "-1.2.3.4", "\xFF"}) {
        const Pinged pinged = Ping(address.c_str(), 1000);
        EXPECT_EQ(pinged.result, 0) << address;
        EXPECT_TRUE(IsUntouched(pinged.reply)) << address;
        EXPECT_LT(pinged.milliseconds, 500) << address;
        EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR, L"is not an IPv4 address")))
            << address;
    }
    Ping("printer", 1000);
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR, L"\"printer\"")));
}

TEST(Ping, OfNothing_FailsAndSaysSo) {
    const Pinged pinged = Ping(nullptr, 1000);
    EXPECT_EQ(pinged.result, 0);
    EXPECT_TRUE(IsUntouched(pinged.reply));
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR, L"no address")));
}

TEST(Ping, FromManyThreadsAtOnce_GivesEachItsOwnReply) {
    ChangeNetwork("ping_group_range", "0 0");
    std::vector<std::thread> threads;
    std::vector<int> answered(8);
    for (std::size_t index = 0; index < answered.size(); ++index) {
        threads.emplace_back([&answered, index] {
            const auto host = static_cast<std::uint8_t>(index + 1);
            const std::string address = "127.0.0." + std::to_string(host);
            for (int round = 0; round < 50; ++round) {
                const Pinged pinged = Ping(address.c_str(), 1000);
                answered[index] +=
                    pinged.result != 0 && pinged.reply.address == NetworkOrder(127, 0, 0, host);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(answered, Each(50));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

}  // namespace

}  // namespace HostTest
