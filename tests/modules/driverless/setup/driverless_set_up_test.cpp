// SPDX-License-Identifier: Apache-2.0

// The parts of setting up a printer that need no network, and its entry points with what makes no
// sense.

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/results.h"
#include "modules/driverless/discovery/host_network.h"
#include "modules/driverless/printer/wifi_settings.h"
#include "modules/driverless/setup/host_route.h"
#include "modules/driverless/setup/join_watch.h"
#include "modules/driverless/setup/offered_networks.h"
#include "modules/driverless/setup/printer_network.h"

VENDORSDK_EXPORT(StartAPWifiScan);
VENDORSDK_EXPORT(StopAPWifiScan);
VENDORSDK_EXPORT(PrinterAPNetConfigEvent);
VENDORSDK_EXPORT(IsLocalAreaNetworkOK);
VENDORSDK_EXPORT(GetDeviceInfoByNet);
VENDORSDK_EXPORT(IsConnectCurrentWifiAP);

namespace Driverless {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// In a process of its own, which may give its rights away.
TEST(MayBePrintersOwnDeathTest, IsNotToldByTheEnvironmentOfAProgramWithMoreRightsThanItsUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    setenv("DEVICEDISCOVER_PRINTER_NETWORKS", "Attic", 1);
    unsetenv("DRIVERLESS_LOG");
    ASSERT_TRUE(MayBePrintersOwn("Attic"));
    constexpr uid_t other = 65534;
    EXPECT_EXIT(
        {
            const bool isOther = setresuid(other, 0, 0) == 0;
            const bool isTold = MayBePrintersOwn("Attic") || MayBePrintersOwn("Attic");
            _exit(isOther && !isTold ? 0 : 1);
        },
        testing::ExitedWithCode(0),
        "^driverless: the environment variable DEVICEDISCOVER_PRINTER_NETWORKS is ignored: this "
        "program has more rights than the user who started it\n$");
}

TEST(MayBePrintersOwn, KnowsWifiDirectAndTheWordsOfPrinters) {
    EXPECT_TRUE(MayBePrintersOwn("DIRECT-a1-Acme Laser", ""));
    EXPECT_TRUE(MayBePrintersOwn("Acme Printer 12", ""));
    EXPECT_TRUE(MayBePrintersOwn("ACME-SETUP-1234", ""));
    EXPECT_FALSE(MayBePrintersOwn("HomeNet", ""));
    EXPECT_FALSE(MayBePrintersOwn("direct-a1", ""));
    EXPECT_FALSE(MayBePrintersOwn("x DIRECT-a1", ""));
    EXPECT_FALSE(MayBePrintersOwn("", "*"));
}

TEST(MayBePrintersOwn, TakesFurtherNamesWithWildcards) {
    EXPECT_TRUE(MayBePrintersOwn("Laser", "Other;Laser"));
    EXPECT_FALSE(MayBePrintersOwn("Laser", "Other;Laser 2;;laser"));
    EXPECT_TRUE(MayBePrintersOwn("Acme-Laser-9", "Acme*9"));
    EXPECT_TRUE(MayBePrintersOwn("Acme", "Acme*"));
    EXPECT_TRUE(MayBePrintersOwn("aabab", "*ab"));
    EXPECT_FALSE(MayBePrintersOwn("aabab", "*ba"));
    EXPECT_FALSE(MayBePrintersOwn("Acm", "Acme*"));
}

constexpr char kTableHead[] =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

std::string Gateway(const std::string& rows, const std::string& interface) {
    std::istringstream table(kTableHead + rows);
    return GatewayIn(table, interface);
}

TEST(GatewayIn, IsThatOfTheInterfacesBestDefaultRoute) {
    const std::string rows =
        "eth0\t00000000\t0100000A\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
        "wlan0\t00000000\t01DFA8C0\t0003\t0\t0\t700\t00000000\t0\t0\t0\n"
        "wlan0\t00000000\t02DFA8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n"
        "wlan0\t00DFA8C0\t00000000\t0001\t0\t0\t600\t00FFFFFF\t0\t0\t0\n";
    EXPECT_EQ(Gateway(rows, "wlan0"), "192.168.223.2");
    EXPECT_EQ(Gateway(rows, "eth0"), "10.0.0.1");
    EXPECT_EQ(Gateway(rows, "wlan1"), "");
}

TEST(GatewayIn, IsTheNetworksFirstAddressWithoutADefaultRoute) {
    const std::string groups = "wlan0\t000000E0\t00000000\t0001\t0\t0\t0\t000000F0\t0\t0\t0\n";
    EXPECT_EQ(Gateway(groups, "wlan0"), "");
    EXPECT_EQ(Gateway(groups + "wlan0\t00DFA8C0\t00000000\t0001\t0\t0\t600\t00FFFFFF\t0\t0\t0\n",
                      "wlan0"),
              "192.168.223.1");
}

TEST(GatewayIn, PassesOverRowsThatMakeNoSense) {
    EXPECT_EQ(Gateway("wlan0\n\nwlan0\tx\ty\n", "wlan0"), "");
    EXPECT_EQ(Gateway("wlan0\t00000000\t01DFA8C0\t0002\t0\t0\t0\t00000000\t0\t0\t0\n", "wlan0"),
              "");
}

// The loopback is up and has an address everywhere.
TEST(IsOnWifi, GoesByWhatTheSystemCallsWifi) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("driverless-wifi-" + std::to_string(getpid()));
    EXPECT_FALSE(IsOnWifi(folder.string()));
    std::filesystem::create_directories(folder / "lo");
    EXPECT_FALSE(IsOnWifi(folder.string()));
    std::filesystem::create_directories(folder / "lo" / "phy80211");
    EXPECT_TRUE(IsOnWifi(folder.string()));
    std::filesystem::remove_all(folder);
}

std::string Problem(const std::string& name, const std::string& passPhrase) {
    return ProblemWith({name, Base::Secret(passPhrase)});
}

TEST(ProblemWith, AllowsWhatTheStandardAllows) {
    EXPECT_EQ(Problem("n", ""), "");
    EXPECT_EQ(Problem(std::string(32, 'n'), std::string(8, 'p')), "");
    EXPECT_EQ(Problem("Café Ω", std::string(63, 'p')), "");
}

TEST(ProblemWith, NamesWhatItDoesNot) {
    EXPECT_NE(Problem("", "12345678"), "");
    EXPECT_NE(Problem(std::string(33, 'n'), ""), "");
    EXPECT_NE(Problem("n\xFF", ""), "");
    EXPECT_NE(Problem("n", "1234567"), "");
    EXPECT_NE(Problem("n", std::string(64, 'p')), "");
}

// A printer that is told to join "Home" at second 0, with 30 s to do it.
class JoinWatchTest : public testing::Test {
protected:
    std::optional<int> Says(JoinWatch& watch, WifiState state, milliseconds at,
                            const std::string& name = "Home") {
        PrinterAttributes attributes;
        attributes.wifiState = state;
        attributes.wifiName = name;
        return watch.Answered(attributes, begin + at);
    }

    JoinWatch Told(WifiState before) { return JoinWatch("Home", before, begin, seconds(30)); }

    const JoinWatch::Time begin{};
};

TEST_F(JoinWatchTest, EndsWhenThePrinterSaysHowItWent) {
    for (const auto& [state, result] :
         {std::pair(WifiState::On, kOk), std::pair(WifiState::NotVisible, kNotVisible),
          std::pair(WifiState::CannotJoin, kCannotJoin)}) {
        JoinWatch watch = Told(WifiState::NotConfigured);
        EXPECT_EQ(Says(watch, WifiState::Joining, milliseconds(250)), std::nullopt);
        EXPECT_EQ(Says(watch, state, milliseconds(500)), result);
    }
}

TEST_F(JoinWatchTest, DoesNotTakeTheOutcomeOfAnEarlierAttempt) {
    JoinWatch watch = Told(WifiState::CannotJoin);
    EXPECT_EQ(Says(watch, WifiState::CannotJoin, milliseconds(250)), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::Joining, milliseconds(500)), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::CannotJoin, milliseconds(750)), kCannotJoin);
}

TEST_F(JoinWatchTest, TakesAnOldStateThatLasts) {
    JoinWatch watch = Told(WifiState::CannotJoin);
    EXPECT_EQ(Says(watch, WifiState::CannotJoin, kOldStateLasts - milliseconds(1)), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::CannotJoin, kOldStateLasts), kCannotJoin);
}

TEST_F(JoinWatchTest, DoesNotTakeAnotherNetworkForTheOneThatWasGiven) {
    JoinWatch watch = Told(WifiState::On);
    EXPECT_EQ(Says(watch, WifiState::On, seconds(5), "Office"), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::On, seconds(6)), kOk);
}

TEST_F(JoinWatchTest, TimesOut) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(Says(watch, WifiState::Joining, milliseconds(29'999)), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::Joining, seconds(30)), kTimedOut);
    EXPECT_EQ(watch.Silent(begin + seconds(29)), std::nullopt);
    EXPECT_EQ(watch.Silent(begin + seconds(30)), kTimedOut);
}

TEST_F(JoinWatchTest, APrinterThatStaysAwayIsNotKnownToHaveJoined) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(watch.Gone(begin + seconds(1)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + milliseconds(29'999)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + seconds(30)), kNotConfirmed);
}

TEST_F(JoinWatchTest, APrinterThatLeftLateStillHasItsTime) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(watch.Gone(begin + seconds(29)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + seconds(29) + kLeastAbsence - milliseconds(1)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + seconds(29) + kLeastAbsence), kNotConfirmed);
}

TEST_F(JoinWatchTest, AHostThatIsNowhereGoesBackAtOnce_AndAgainAfterAWhile) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(watch.Gone(begin + seconds(1)), std::nullopt);
    EXPECT_TRUE(watch.ShouldGoBack(false, begin + seconds(1)));
    watch.Visited(begin + seconds(2));
    EXPECT_FALSE(watch.ShouldGoBack(false, begin + seconds(2)));
    EXPECT_TRUE(watch.ShouldGoBack(false, begin + seconds(2) + kBetweenVisits));
}

TEST_F(JoinWatchTest, AHostThatIsElsewhereStaysThereForAWhile) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(watch.Gone(begin + seconds(1)), std::nullopt);
    EXPECT_FALSE(watch.ShouldGoBack(true, begin + seconds(1)));
    EXPECT_TRUE(watch.ShouldGoBack(true, begin + seconds(1) + kPatienceElsewhere));
}

TEST_F(JoinWatchTest, GoesOnWhenThePrintersNetworkComesBack) {
    JoinWatch watch = Told(WifiState::NotConfigured);
    EXPECT_EQ(watch.Gone(begin + seconds(1)), std::nullopt);
    EXPECT_EQ(watch.Silent(begin + seconds(5)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + seconds(6)), std::nullopt);
    EXPECT_EQ(watch.Gone(begin + seconds(12)), std::nullopt);
    EXPECT_EQ(Says(watch, WifiState::CannotJoin, seconds(13)), kCannotJoin);
}

using Networks = std::vector<NetworkInRange>;

std::string Names(const Networks& networks) {
    std::string names;
    for (const NetworkInRange& network : networks) {
        names += network.name + " ";
    }
    return names;
}

TEST(OfferedNetworks, AreEachReportedOnceAndAgainWhenTheSignalChanged) {
    OfferedNetworks offered;
    EXPECT_EQ(Names(offered.Take({{"A", 50}, {"B", 60}}, "")), "A B ");
    EXPECT_EQ(Names(offered.Take({{"A", 59}, {"B", 60}, {"C", 1}}, "")), "C ");
    EXPECT_EQ(Names(offered.Take({{"A", 60}, {"B", 51}}, "")), "A ");
    EXPECT_EQ(Names(offered.Take({{"A", 51}, {"B", 50}}, "")), "B ");
}

TEST(OfferedNetworks, LeaveOutPrintersOwn) {
    OfferedNetworks offered;
    EXPECT_EQ(Names(offered.Take({{"DIRECT-a1-Laser", 50}, {"Acme Setup", 50}, {"Print Shop", 50}},
                                 "Acme Setup")),
              "Print Shop ");
    EXPECT_EQ(Names(offered.Take({{"HomeNet", 50}}, "HomeNet")), "HomeNet ");
}

TEST(StrongestOf, LeavesOutTheWeakAndTheWeakest) {
    const Networks networks{{"A", 50}, {"B", 70}, {"C", 50}, {"D", 0}};
    EXPECT_EQ(Names(StrongestOf(networks, 0, 9)), "B A C D ");
    EXPECT_EQ(Names(StrongestOf(networks, -1, 9)), "B A C D ");
    EXPECT_EQ(Names(StrongestOf(networks, 50, 9)), "B A C ");
    EXPECT_EQ(Names(StrongestOf(networks, 51, 9)), "B ");
    EXPECT_EQ(Names(StrongestOf(networks, 0, 2)), "B A ");
    EXPECT_EQ(Names(StrongestOf(networks, 101, 9)), "");
}

int Ignore(const VendorSdk::WifiConfigInfo*) {
    return 0;
}

TEST(StartAPWifiScan, NeedsACallback) {
    VendorSdk::WifiCallbackInfo info{};
    EXPECT_EQ(StartAPWifiScan(nullptr), kNoListener);
    EXPECT_EQ(StartAPWifiScan(&info), kNoListener);
}

TEST(StopAPWifiScan, SucceedsWithoutAScan) {
    EXPECT_EQ(StopAPWifiScan(), 0);
}

TEST(StartAPWifiScan, EndsWhereTheHostCannotLook) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    static VendorSdk::WifiCallbackInfo info{Ignore, 0};
    EXPECT_EQ(StartAPWifiScan(&info), kNoWifiAnswer);
}

TEST(SetUpOperations, FailWithoutWifi) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    VendorSdk::DeviceInfo device;
    std::memset(&device, 'x', sizeof device);
    const VendorSdk::DeviceInfo untouched = device;
    EXPECT_EQ(IsConnectCurrentWifiAP(), kNotPrintersNetwork);
    EXPECT_EQ(GetDeviceInfoByNet(&device), kNotPrintersNetwork);
    EXPECT_EQ(std::memcmp(&device, &untouched, sizeof device), 0);
    EXPECT_EQ(IsLocalAreaNetworkOK(&device), kNoBus);
    VendorSdk::WifiConfigInfo network{0, "Home", "correct-horse"};
    EXPECT_EQ(PrinterAPNetConfigEvent(&network), kNotReached);
}

TEST(SetUpOperations, RefuseNoRecordAndOneThatSaysNothing) {
    VendorSdk::DeviceInfo device{};
    VendorSdk::WifiConfigInfo network{};
    EXPECT_EQ(GetDeviceInfoByNet(nullptr), kNotReached);
    EXPECT_EQ(IsLocalAreaNetworkOK(nullptr), kNoIdentity);
    EXPECT_EQ(IsLocalAreaNetworkOK(&device), kNoIdentity);
    EXPECT_EQ(PrinterAPNetConfigEvent(nullptr), kNotValid);
    EXPECT_EQ(PrinterAPNetConfigEvent(&network), kNotValid);
}

TEST(PrinterAPNetConfigEvent, SurvivesARecordWithoutTerminators) {
    VendorSdk::WifiConfigInfo network;
    std::memset(&network, 'x', sizeof network);
    EXPECT_EQ(PrinterAPNetConfigEvent(&network), kNotValid);
}

}  // namespace
}  // namespace Driverless
