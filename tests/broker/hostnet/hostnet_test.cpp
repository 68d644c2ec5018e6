// SPDX-License-Identifier: Apache-2.0

// The host's own side of a network: ping and Wi-Fi.

#include "tests/support/broker_test.h"
#include "tests/support/scripted_host.h"

namespace {

using DeviceDiscover::PrinterNetInterface;
using DeviceDiscover::PrinterWifiInterface;
using PrinterWifiApiStruct::WlanInfoData;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HostNet : public BrokerTest {
protected:
    static std::string Said(int level, const std::string& message, const std::string& location) {
        return std::to_string(level) + ' ' + message + "(DeviceDiscover::" + location + ')';
    }
    static std::string Start() { return Said(3, "start", "PrinterNetInterface::CheckPing"); }
    static std::string Failed() { return Said(4, "ping failed", "PrinterNetInterface::CheckPing"); }

    static bool Check(const std::string& address) {
        return PrinterNetInterface::GetInstance().CheckPing(address);
    }

    static std::vector<std::wstring> Names(const std::vector<WlanInfoData>& networks) {
        std::vector<std::wstring> names;
        for (const WlanInfoData& network : networks) {
            names.push_back(network.ssid);
        }
        return names;
    }
};

TEST_F(HostNet, APingThatIsAnsweredAtOnceIsTheOnlyOne) {
    ScriptedHost::AnswerPings({7});
    EXPECT_TRUE(Check("192.0.2.1"));
    EXPECT_THAT(TakeLines(), ElementsAre(Start()));
    const std::vector<ScriptedHost::PingCall> pings = ScriptedHost::Pings();
    ASSERT_THAT(pings, SizeIs(1));
    EXPECT_EQ(pings[0].address, "192.0.2.1");
    EXPECT_EQ(pings[0].timeout, 100u);
    EXPECT_TRUE(pings[0].writableReply);
}

TEST_F(HostNet, EveryResultButZeroIsAnAnswer) {
    for (const int result : {1, -1, 2147483647, -2147483647 - 1}) {
        ScriptedHost::AnswerPings(std::vector<int>(ScriptedHost::Pings().size() + 1, result));
        EXPECT_TRUE(Check("192.0.2.1"));
    }
}

TEST_F(HostNet, ASecondAndAThirdPingMayBeAnswered) {
    ScriptedHost::AnswerPings({0, 1, 0, 0, 1});
    EXPECT_TRUE(Check("192.0.2.1"));
    EXPECT_THAT(ScriptedHost::Pings(), SizeIs(2));
    EXPECT_TRUE(Check("192.0.2.1"));
    EXPECT_THAT(ScriptedHost::Pings(), SizeIs(5));
    EXPECT_THAT(TakeLines(), ElementsAre(Start(), Start()));
}

TEST_F(HostNet, ThreePingsWithoutAnAnswerAreEnough) {
    EXPECT_FALSE(Check("192.0.2.1"));
    EXPECT_THAT(TakeLines(), ElementsAre(Start(), Failed()));
    const std::vector<ScriptedHost::PingCall> pings = ScriptedHost::Pings();
    ASSERT_THAT(pings, SizeIs(3));
    for (const ScriptedHost::PingCall& ping : pings) {
        EXPECT_EQ(ping.timeout, 100u);
    }
}

TEST_F(HostNet, AddressesArePassedOnUnchecked) {
    EXPECT_FALSE(Check(""));
    EXPECT_FALSE(Check("no address"));
    EXPECT_EQ(ScriptedHost::Pings().front().address, "");
    EXPECT_EQ(ScriptedHost::Pings().back().address, "no address");
}

TEST_F(HostNet, TheListOfNetworksIsWhatTheScanAppends) {
    ScriptedHost::InRange({{L"office", {80, 2}, false}, {L"", {10, 0}, false}});
    std::vector<WlanInfoData> networks{{L"before", {1, 1}, true}};
    PrinterWifiInterface::GetInstance().GetSsidList(networks);
    EXPECT_THAT(Names(networks), ElementsAre(L"before", L"office", L""));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(HostNet, TheListToOfferLeavesOutHiddenAndExcludedNetworks) {
    ScriptedHost::InRange({{L"office", {80, 2}, false},
                           {L"", {70, 2}, false},
                           {L"secret", {60, 2}, true},
                           {L"attic", {50, 4}, false},
                           {L"office", {40, 1}, false}});
    std::vector<WlanInfoData> networks{{L"before", {1, 1}, false}};
    PrinterWifiInterface::GetInstance().GetSupList(networks);
    EXPECT_THAT(Names(networks), ElementsAre(L"office", L"attic", L"office"));
    EXPECT_EQ(networks[1].attributes.signalQuality, 50);
    EXPECT_EQ(networks[1].attributes.security, 4u);
    EXPECT_FALSE(networks[1].excludeFlag);
    EXPECT_EQ(ScriptedHost::Scans(), 1);
    EXPECT_THAT(TakeLines(),
                ElementsAre(Said(3, "start Scan", "PrinterWifiInterface::GetSupList")));
}

TEST_F(HostNet, TheListToOfferIsEmptiedWhenNothingIsInRange) {
    std::vector<WlanInfoData> networks{{L"before", {1, 1}, false}};
    PrinterWifiInterface::GetInstance().GetSupList(networks);
    EXPECT_THAT(networks, IsEmpty());
}

TEST_F(HostNet, TheNetworkOfTheHostKeepsItsOrder) {
    ScriptedHost::JoinedTo({L"one", L"two", L"three"});
    std::wstring first = L"x";
    std::wstring second = L"x";
    std::wstring third = L"x";
    PrinterWifiInterface::GetInstance().QueryConnectedAP(first, second, third);
    EXPECT_EQ(first, L"one");
    EXPECT_EQ(second, L"two");
    EXPECT_EQ(third, L"three");
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(HostNet, JoiningForwardsBothTextsAndTheOutcome) {
    PrinterWifiInterface& wifi = PrinterWifiInterface::GetInstance();
    EXPECT_FALSE(wifi.ConnectAP(L"office", L"pass phrase"));
    ScriptedHost::AnswerJoins(true);
    EXPECT_TRUE(wifi.ConnectAP(L"attic", L""));
    EXPECT_THAT(ScriptedHost::Joins(),
                ElementsAre(std::pair(std::wstring(L"office"), std::wstring(L"pass phrase")),
                            std::pair(std::wstring(L"attic"), std::wstring())));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

// Applications may keep a copy of their own, which answers like the one they copied.
TEST_F(HostNet, TheWifiInterfaceCanBeCopied) {
    static_assert(sizeof(PrinterWifiInterface) == sizeof(std::vector<WlanInfoData>));
    static_assert(!std::is_default_constructible_v<PrinterWifiInterface>);
    static_assert(!std::is_destructible_v<PrinterWifiInterface>);
    // Its destructor is not for applications: the copy stays.
    static PrinterWifiInterface& copy =
        *new PrinterWifiInterface(PrinterWifiInterface::GetInstance());
    ScriptedHost::InRange({{L"office", {80, 2}, false}});
    std::vector<WlanInfoData> networks;
    copy.GetSupList(networks);
    EXPECT_THAT(networks, SizeIs(1));
    copy = PrinterWifiInterface::GetInstance();
    EXPECT_EQ(&PrinterWifiInterface::GetInstance(), &PrinterWifiInterface::GetInstance());
}

TEST_F(HostNet, ThePingInterfaceHasOneVirtualSlotAndIsAlwaysTheSame) {
    static_assert(sizeof(PrinterNetInterface) == sizeof(void*));
    static_assert(!std::is_default_constructible_v<PrinterNetInterface>);
    static_assert(!std::is_destructible_v<PrinterNetInterface>);
    static_assert(std::is_polymorphic_v<PrinterNetInterface>);
    EXPECT_EQ(&PrinterNetInterface::GetInstance(), &PrinterNetInterface::GetInstance());
}

}  // namespace
