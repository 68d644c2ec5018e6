// SPDX-License-Identifier: Apache-2.0

#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/host/PrinterDiscoverAPI/wifi/mock_network_manager_linux.h"
#include "tests/host/PrinterDiscoverAPI/wifi/wifi_test.h"

namespace HostTest {

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Clock = std::chrono::steady_clock;

const std::wstring kSecret = L"correct horse 7";
const std::string kSecretText = "correct horse 7";
const std::wstring kBrokenOff =
    L"the access point broke off the handshake; the pass phrase may be wrong";

// What a program prints.
std::string OutputOf(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[512];
    while (pipe != nullptr && std::fgets(buffer, sizeof buffer, pipe) != nullptr) {
        output += buffer;
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

std::string Text(const std::map<std::string, sdbus::Variant>& settings, const std::string& name) {
    const auto found = settings.find(name);
    return found == settings.end() ? "(none)" : found->second.get<std::string>();
}

class WifiWithoutAdapter : public testing::Test {
protected:
    ~WifiWithoutAdapter() override { ExpectNeverLogged(kSecret); }

    MockNetworkManager service;
};

class Wifi : public WifiWithoutAdapter {
protected:
    // What joining the network logs; it fails.
    void ExpectNotJoined(const std::wstring& ssid, const std::wstring& passPhrase,
                         const std::wstring& reason) {
        EXPECT_FALSE(Connect(ssid, passPhrase));
        ExpectNeverLogged(kSecret);
        EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR,
                                                    L"cannot join \"" + ssid + L"\": " + reason)));
    }

    // Nothing is left of an attempt.
    void ExpectTidy() {
        EXPECT_EQ(service.Profiles(), 0U);
        EXPECT_EQ(service.ActiveConnections(), 0U);
    }

    const std::string adapter = service.AddAdapter("wlan0");
};

// --- scan
// -----------------------------------------------------------------------------------------

TEST_F(Wifi, AScanGivesTheNetworksInRange) {
    service.Add(adapter, {.name = "Home", .strength = 82, .rsn = kPsk});
    service.Add(adapter, {.name = "Caf\xC3\xA9", .strength = 60});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 82, WLAN_SECURITY_WPA_PERSONAL, false),
                                    IsNetwork(L"Caf\u00E9", 60, kOpen, false)));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Wifi, AScanAppends) {
    service.Add(adapter, {.name = "Home", .strength = 82});
    Networks networks(1);
    networks[0].ssid = L"before";
    PrinterWifiAPI::GetInstance().ScanWifiAPBySsid(networks);
    ASSERT_EQ(networks.size(), 2U);
    EXPECT_EQ(networks[0].ssid, L"before");
    EXPECT_EQ(networks[1].ssid, L"Home");
}

TEST_F(Wifi, AScanIsAFreshOne) {
    service.Add(adapter, {.name = "Switched on just now", .seen = "scan"});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Switched on just now", 50, kOpen, false)));
    EXPECT_EQ(service.Calls(adapter, "RequestScan"), 1);
}

TEST_F(Wifi, WhatIsKnownNeedsNoScan) {
    service.SetScans("endless");
    service.Add(adapter, {.name = "Home", .strength = 82, .rsn = kPsk});
    service.Add(adapter, {.name = "Switched on just now", .seen = "scan"});
    const auto start = Clock::now();
    EXPECT_THAT(Known(), ElementsAre(IsNetwork(L"Home", 82, WLAN_SECURITY_WPA_PERSONAL, false)));
    EXPECT_LT(SecondsSince(start), 2);
    EXPECT_EQ(service.Calls(adapter, "RequestScan"), 0);
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_DONE);
}

TEST_F(Wifi, AScanUsesAllAdapters) {
    const std::string second = service.AddAdapter("wlan1");
    service.Add(adapter, {.name = "One", .strength = 30, .seen = "scan"});
    service.Add(second, {.name = "Two", .strength = 20, .seen = "scan"});
    service.Add(second, {.name = "One", .strength = 40, .seen = "scan"});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"One", 40, kOpen, false),
                                    IsNetwork(L"Two", 20, kOpen, false)));
}

TEST_F(Wifi, AScanThatIsRefused_GivesWhatIsKnown) {
    service.Add(adapter, {.name = "Home"});
    Scan();
    service.SetScans("refused");
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 50, kOpen, false)));
    EXPECT_LT(SecondsSince(start), 2);
}

TEST_F(Wifi, AScanThatIsNotAllowed_GivesWhatIsKnownAtOnceAndSaysSoOnce) {
    service.Add(adapter, {.name = "Home"});
    for (const auto& [policy, words] :
         {std::pair("denied", L"NetworkManager does not allow it: Rejected send message"),
          std::pair("not permitted",
                    L"NetworkManager does not allow it: Insufficient privileges")}) {
        service.SetScans(policy);
        for (int round = 0; round < 3; ++round) {
            const auto start = Clock::now();
            EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 50, kOpen, false)));
            EXPECT_LT(SecondsSince(start), 2);
        }
        EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, words))) << policy;
        service.SetScans("work");
        Scan();
        EXPECT_THAT(TakeLines(), IsEmpty());
    }
}

TEST_F(Wifi, AScanThatOneOfTwoAdaptersIsNotAllowed_SaysSoOnce) {
    const std::string second = service.AddAdapter("wlan1");
    for (const std::string& denied : {adapter, second}) {
        service.SetScansOf(denied, "denied");
        service.Add(denied == adapter ? second : adapter, {.name = "Allowed", .seen = "scan"});
        for (int round = 0; round < 3; ++round) {
            EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Allowed", 50, kOpen, false)));
        }
        EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"does not allow it")));
        service.SetScansOf(denied, "work");
        Scan();
        EXPECT_THAT(TakeLines(), IsEmpty());
    }
}

TEST_F(Wifi, AScanThatDoesNotEnd_IsNotAwaitedForEver) {
    service.SetScans("endless");
    service.Add(adapter, {.name = "Home"});
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 50, kOpen, false)));
    EXPECT_NEAR(SecondsSince(start), 10, 1);
}

TEST_F(Wifi, AScanTellsProtectionAndWhatCannotBeOffered) {
    service.Add(adapter, {.name = "wpa", .strength = 90, .wpa = kPsk});
    service.Add(adapter, {.name = "wpa3", .strength = 85, .rsn = kSae});
    service.Add(adapter, {.name = "mixed", .strength = 80, .rsn = kPsk | kAccount});
    service.Add(adapter, {.name = "work", .strength = 75, .rsn = kAccount});
    service.Add(adapter, {.name = "old", .strength = 70, .flags = kPrivacy});
    service.Add(adapter, {.name = "owe", .strength = 65, .rsn = kOwe});
    service.Add(adapter, {.name = "peer", .strength = 60, .mode = 1});
    service.Add(adapter, {.name = "own", .strength = 55, .mode = 3});
    EXPECT_THAT(
        Scan(),
        ElementsAre(IsNetwork(L"wpa", 90, WLAN_SECURITY_WPA_PERSONAL, false),
                    IsNetwork(L"wpa3", 85, WLAN_SECURITY_WPA_PERSONAL, false),
                    IsNetwork(L"mixed", 80,
                              WLAN_SECURITY_WPA_PERSONAL | WLAN_SECURITY_WPA_ENTERPRISE, false),
                    IsNetwork(L"work", 75, WLAN_SECURITY_WPA_ENTERPRISE, true),
                    IsNetwork(L"old", 70, WLAN_SECURITY_WEP, true),
                    IsNetwork(L"owe", 65, kOpen, true), IsNetwork(L"peer", 60, kOpen, true),
                    IsNetwork(L"own", 55, kOpen, true)));
}

TEST_F(Wifi, AScanKeepsEachHiddenNetwork) {
    service.Add(adapter, {.name = "", .strength = 20, .rsn = kPsk});
    service.Add(adapter, {.name = std::string(7, '\0'), .strength = 30});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"", 30, kOpen, true),
                                    IsNetwork(L"", 20, WLAN_SECURITY_WPA_PERSONAL, true)));
}

TEST_F(Wifi, ANameThatIsNoText_IsShownAsItsBytesAndNotOffered) {
    service.Add(adapter, {.name = "Caf\xE9", .strength = 40});
    service.Add(adapter, {.name = "line\nbreak", .strength = 30});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Caf\u00E9", 40, kOpen, true),
                                    IsNetwork(L"line\nbreak", 30, kOpen, true)));
}

TEST_F(Wifi, AScanAgreesWithNmcli) {
    service.Add(adapter, {.name = "Home", .strength = 82, .rsn = kPsk});
    service.Add(adapter, {.name = "Caf\xC3\xA9", .strength = 60});
    service.Add(adapter, {.name = "Work", .strength = 40, .rsn = kAccount});
    std::string seen;
    for (const auto& network : Scan()) {
        const std::wstring& ssid = network.ssid;
        seen += ssid == L"Caf\u00E9" ? "Caf\xC3\xA9" : std::string(ssid.begin(), ssid.end());
        seen += ':' + std::to_string(network.attributes.signalQuality) + ':';
        seen += network.attributes.security == WLAN_SECURITY_WPA_PERSONAL     ? "WPA2"
                : network.attributes.security == WLAN_SECURITY_WPA_ENTERPRISE ? "WPA2 802.1X"
                                                                              : "";
        seen += '\n';
    }
    EXPECT_EQ(seen, OutputOf("LC_ALL=C.UTF-8 nmcli -t -f SSID,SIGNAL,SECURITY device wifi list"
                             " --rescan no"));
}

// --- no Wi-Fi
// -------------------------------------------------------------------------------------

TEST_F(WifiWithoutAdapter, IsNoWifi) {
    service.AddEthernet("eth0");
    ExpectNoWifi(L"the host has no Wi-Fi adapter");
    ExpectNotConnected();
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_NO_ADAPTER);
}

TEST_F(WifiWithoutAdapter, AnAdapterThatIsNotManaged_IsSaidToBe) {
    service.AddAdapter("wlan0", kUnmanaged);
    ExpectNoWifi(L"wlan0 is not managed by NetworkManager");
}

TEST_F(WifiWithoutAdapter, AnAdapterThatIsNotReady_IsSaidToBe) {
    service.AddAdapter("wlan0", kUnavailable);
    ExpectNoWifi(L"wlan0 is not ready; it may be switched off, or its link down");
}

TEST_F(Wifi, WhereTheRadioIsOff_IsSaidToBe) {
    service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetProperty("WirelessEnabled", false);
    ExpectNoWifi(L"Wi-Fi is switched off");
    service.SetProperty("WirelessHardwareEnabled", false);
    ExpectNoWifi(L"Wi-Fi is switched off by the host's hardware");
}

TEST_F(Wifi, WithoutTheService_SaysSo) {
    service.Kill();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    ExpectNoWifi(L"NetworkManager is not running");
    ExpectNotConnected();
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_NOT_RUNNING);
    EXPECT_EQ(LastProblem().reason, "NetworkManager is not running");
}

TEST_F(Wifi, WithoutABus_SaysSo) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
    ExpectNoWifi(L"the system bus cannot be reached");
    ExpectNotConnected();
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_NOT_RUNNING);
}

TEST_F(Wifi, AServiceThatDoesNotAnswer_IsNotAwaitedForEver) {
    const pid_t process = service.Process();
    kill(process, SIGSTOP);
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_LT(SecondsSince(start), 8);
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_FAILED);
    kill(process, SIGCONT);
    EXPECT_THAT(TakeLines(),
                ElementsAre(IsLine(LOG_LEVEL_WARNING, L"has ended or does not answer")));
}

TEST_F(Wifi, AServiceThatEndsDuringAScan_EndsIt) {
    service.SetScans("endless");
    service.Add(adapter, {.name = "Home"});
    std::thread killer([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        service.Kill();
    });
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_LT(SecondsSince(start), 3);
    killer.join();
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"NetworkManager")));
}

// --- connected
// ------------------------------------------------------------------------------------

TEST_F(Wifi, AHostThatIsJoinedToNothing_SaysNothing) {
    service.Add(adapter, {.name = "Home"});
    service.SetScans("denied");
    EXPECT_FALSE(Connect(L"Homes", L""));
    service.SetScans("work");
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_FAILED);
    EXPECT_EQ(LastProblem().reason, "no access point of that name is in range");
    char cut[3];
    PrinterWifiProblem(cut, sizeof cut);
    EXPECT_STREQ(cut, "no");
    TakeLines();
    ExpectNotConnected();
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_EQ(LastProblem().kind, PRINTER_WIFI_DONE);
    EXPECT_EQ(LastProblem().reason, "");
}

TEST_F(Wifi, AHostKnowsWhatItIsJoinedTo) {
    service.Add(adapter, {.name = "Home"});
    service.Add(adapter, {.name = "Caf\xC3\xA9", .address = "00:23:F8:7E:12:BB"});
    ASSERT_TRUE(Connect(L"Caf\u00E9", L""));
    const Connected connected = QueryConnected();
    EXPECT_EQ(connected.ssid, L"Caf\u00E9");
    EXPECT_EQ(connected.hardwareAddress, L"00:23:F8:7E:12:BB");
    EXPECT_EQ(connected.interfaceName, L"wlan0");
    EXPECT_EQ(OutputOf("LC_ALL=C.UTF-8 nmcli -t -f ACTIVE,SSID,BSSID,DEVICE device wifi list"
                       " --rescan no | grep ^yes"),
              "yes:Caf\xC3\xA9:00\\:23\\:F8\\:7E\\:12\\:BB:wlan0\n");
    EXPECT_THAT(TakeLines(), IsEmpty());
}

// --- join
// -----------------------------------------------------------------------------------------

TEST_F(Wifi, TheRightPassPhraseJoins) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText);
    EXPECT_TRUE(Connect(L"Home", kSecret));
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_EQ(service.ActiveConnections(), 1U);
    ASSERT_EQ(service.Joinings().size(), 1U);
    auto [settings, options] = service.Joinings()[0];
    EXPECT_EQ(settings["802-11-wireless"]["ssid"].get<std::vector<std::uint8_t>>(),
              (std::vector<std::uint8_t>{'H', 'o', 'm', 'e'}));
    EXPECT_EQ(Text(settings["802-11-wireless-security"], "key-mgmt"), "wpa-psk");
    EXPECT_FALSE(settings["connection"]["autoconnect"].get<bool>());
    EXPECT_EQ(Text(options, "persist"), "volatile");
}

TEST_F(Wifi, AWrongPassPhraseIsSaidToBe) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, "another one");
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, kBrokenOff);
    EXPECT_LT(SecondsSince(start), 3);
    ExpectTidy();
}

TEST_F(Wifi, AnOpenNetworkIsJoinedWithoutAPassPhrase) {
    service.Add(adapter, {.name = "Printer-Setup"});
    EXPECT_TRUE(Connect(L"Printer-Setup", L""));
    auto [settings, options] = service.Joinings().at(0);
    EXPECT_EQ(settings.count("802-11-wireless-security"), 0U);
}

TEST_F(Wifi, WhatProtectsTheNetworkIsUsed) {
    service.SetPassPhrase(service.Add(adapter, {.name = "new", .rsn = kSae}), kSecretText);
    service.SetPassPhrase(service.Add(adapter, {.name = "both", .rsn = kSae | kPsk}), kSecretText);
    service.Add(adapter, {.name = "owe", .rsn = kOwe});
    EXPECT_TRUE(Connect(L"new", kSecret));
    EXPECT_TRUE(Connect(L"both", kSecret));
    EXPECT_TRUE(Connect(L"owe", L""));
    std::vector<std::string> methods;
    for (auto& [settings, options] : service.Joinings()) {
        methods.push_back(Text(settings["802-11-wireless-security"], "key-mgmt"));
    }
    EXPECT_THAT(methods, ElementsAre("sae", "wpa-psk", "owe"));
}

TEST_F(Wifi, ASavedNetworkIsJoinedWithWhatIsSaved) {
    const std::string point = service.Add(adapter, {.name = "Home", .wpa = kPsk, .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText);
    service.Save(adapter, "saved", "Home");
    EXPECT_TRUE(Connect(L"Home", L""));
    EXPECT_THAT(service.Joinings(), IsEmpty());
    EXPECT_EQ(service.Profiles(), 1U);
}

TEST_F(Wifi, AnAttemptWithASavedNetworkThatFails_KeepsWhatIsSaved) {
    const std::string point = service.Add(adapter, {.name = "Home", .wpa = kPsk, .rsn = kPsk});
    service.SetPassPhrase(point, "", "no address");
    service.Save(adapter, "saved", "Home");
    ExpectNotJoined(L"Home", L"", L"the network gave the host no address");
    EXPECT_EQ(service.Profiles(), 1U);
}

TEST_F(Wifi, AnAttemptThatFails_TakesTheHostBackToASavedNetwork) {
    service.SetPassPhrase(service.Add(adapter, {.name = "Home", .rsn = kPsk}), kSecretText);
    service.Save(adapter, "saved", "Home");
    service.SetPassPhrase(service.Add(adapter, {.name = "Other", .rsn = kPsk}), "another one");
    ASSERT_TRUE(Connect(L"Home", L""));
    ExpectNotJoined(L"Other", kSecret, kBrokenOff);
    EXPECT_TRUE(Arrives(L"Home"));
    EXPECT_EQ(service.Profiles(), 1U);
}

TEST_F(Wifi, AnAttemptThatFails_TakesTheHostBackToAnOpenNetworkToo) {
    service.Add(adapter, {.name = "Printer-Setup"});
    service.SetPassPhrase(service.Add(adapter, {.name = "Other", .rsn = kPsk}), "another one");
    ASSERT_TRUE(Connect(L"Printer-Setup", L""));
    ExpectNotJoined(L"Other", kSecret, kBrokenOff);
    EXPECT_TRUE(Arrives(L"Printer-Setup"));
}

TEST_F(Wifi, AnAttemptThatFails_SaysItWhenThereIsNoWayBack) {
    service.SetPassPhrase(service.Add(adapter, {.name = "Home", .rsn = kPsk}), kSecretText);
    service.SetPassPhrase(service.Add(adapter, {.name = "Other", .rsn = kPsk}), "another one");
    ASSERT_TRUE(Connect(L"Home", kSecret));
    EXPECT_FALSE(Connect(L"Other", kSecret));
    EXPECT_THAT(TakeLines(),
                ElementsAre(IsLine(LOG_LEVEL_WARNING, L"could not rejoin the previous network"),
                            IsLine(LOG_LEVEL_ERROR, L"cannot join \"Other\": " + kBrokenOff)));
    ExpectTidy();
}

TEST_F(Wifi, AHostThatWasTakenElsewhereGoesBackToWhereItWas) {
    service.Add(adapter, {.name = "Printer-Setup"});
    service.Add(adapter, {.name = "Office"});
    service.Add(adapter, {.name = "Home"});
    EXPECT_EQ(PrinterWifiGoBack("Office"), 0) << "nothing was remembered";
    ASSERT_TRUE(Connect(L"Printer-Setup", L""));
    PrinterWifiRemember();
    EXPECT_EQ(PrinterWifiGoBack("Office"), 1) << "it is there";
    ASSERT_TRUE(Connect(L"Office", L""));
    EXPECT_EQ(PrinterWifiGoBack("Home"), 0) << "somebody else has taken it there";
    EXPECT_EQ(QueryConnected().ssid, L"Office");
    EXPECT_EQ(PrinterWifiGoBack("Office"), 1);
    EXPECT_TRUE(Arrives(L"Printer-Setup"));
}

TEST_F(Wifi, WhatGoesWrongIsSaid) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText, "no address");
    ExpectNotJoined(L"Home", kSecret, L"the network gave the host no address");
    service.SetPassPhrase(point, kSecretText, "gone");
    ExpectNotJoined(L"Home", kSecret, L"the access point does not answer; it may be out of range");
    ExpectTidy();
}

TEST_F(Wifi, WhatTheServiceSaysIsLoggedWithoutThePassPhrase) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText, "talkative");
    ExpectNotJoined(L"Home", kSecret,
                    L"NetworkManager says: psk: '***' is not good, not good at all is '***'");
}

TEST_F(Wifi, AnAttemptThatDoesNotEnd_IsNotAwaitedForEver) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText, "hang");
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"the access point did not let the host in within 30 s");
    EXPECT_NEAR(SecondsSince(start), 30, 1);
    ExpectTidy();
}

TEST_F(Wifi, AServiceThatEndsDuringAJoin_EndsIt) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText, "hang");
    std::thread killer([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        service.Kill();
    });
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"NetworkManager");
    EXPECT_LT(SecondsSince(start), 3);
    killer.join();
}

TEST_F(Wifi, AServiceThatStopsAnsweringDuringAJoin_IsNotAwaitedForEver) {
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, kSecretText, "hang");
    const pid_t process = service.Process();
    std::thread stopper([process] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        kill(process, SIGSTOP);
    });
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"NetworkManager has ended or does not answer");
    EXPECT_LT(SecondsSince(start), 12);
    stopper.join();
    kill(process, SIGCONT);
}

TEST_F(Wifi, AnOlderServiceJoinsToo_AndKeepsNothingOfAFailure) {
    service.SetOld(true);
    const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
    service.SetPassPhrase(point, "another one");
    ExpectNotJoined(L"Home", kSecret, kBrokenOff);
    ExpectTidy();
    service.SetPassPhrase(point, kSecretText);
    EXPECT_TRUE(Connect(L"Home", kSecret));
}

TEST_F(Wifi, AHiddenNetworkIsAskedFor) {
    const std::string point =
        service.Add(adapter, {.name = "Secret Garden", .rsn = kPsk, .seen = "asked"});
    service.SetPassPhrase(point, kSecretText);
    EXPECT_TRUE(Connect(L"Secret Garden", kSecret));
}

TEST_F(Wifi, AHiddenNetworkIsAskedForAgain_WhereAnotherScanWasHeard) {
    const std::string point =
        service.Add(adapter, {.name = "Secret Garden", .rsn = kPsk, .seen = "asked"});
    service.SetPassPhrase(point, kSecretText);
    service.SetScans("dropped");
    EXPECT_TRUE(Connect(L"Secret Garden", kSecret));
    EXPECT_EQ(service.Calls(adapter, "RequestScan"), 2);
}

TEST_F(Wifi, ANetworkThatIsNotThere_IsLookedForAndSaidToBeMissing) {
    service.Add(adapter, {.name = "Home", .rsn = kPsk});
    const auto start = Clock::now();
    ExpectNotJoined(L"Homes", kSecret, L"no access point of that name is in range");
    EXPECT_LT(SecondsSince(start), 18);
    // Again and again, and not without a pause.
    EXPECT_GT(service.Calls(adapter, "RequestScan"), 2);
    EXPECT_LE(service.Calls(adapter, "RequestScan"), 31);
}

TEST_F(Wifi, ANameThatIsNoText_IsJoinedAsAScanShowsIt) {
    service.Add(adapter, {.name = "Caf\xE9"});
    ASSERT_TRUE(Connect(Scan().at(0).ssid, L""));
    auto [settings, options] = service.Joinings().at(0);
    EXPECT_EQ(settings["802-11-wireless"]["ssid"].get<std::vector<std::uint8_t>>(),
              (std::vector<std::uint8_t>{'C', 'a', 'f', 0xE9}));
    EXPECT_EQ(QueryConnected().ssid, L"Caf\u00E9");
}

TEST_F(Wifi, TheStrongestFittingAccessPointIsChosen) {
    service.Add(adapter, {.name = "Home", .address = "00:00:00:00:00:01", .strength = 90});
    const auto secure = [&](const char* address, std::uint8_t strength) {
        service.SetPassPhrase(
            service.Add(adapter,
                        {.name = "Home", .address = address, .strength = strength, .rsn = kPsk}),
            kSecretText);
    };
    secure("00:00:00:00:00:02", 40);
    secure("00:00:00:00:00:03", 60);
    ASSERT_TRUE(Connect(L"Home", kSecret));
    EXPECT_EQ(QueryConnected().hardwareAddress, L"00:00:00:00:00:03");
    ASSERT_TRUE(Connect(L"Home", L""));
    EXPECT_EQ(QueryConnected().hardwareAddress, L"00:00:00:00:00:01");
}

TEST_F(Wifi, WhatDoesNotFitIsRefusedWithoutAnAttempt) {
    service.Add(adapter, {.name = "open"});
    service.Add(adapter, {.name = "work", .rsn = kAccount});
    service.Add(adapter, {.name = "old", .flags = kPrivacy});
    service.Add(adapter, {.name = "peer", .mode = 1});
    service.Add(adapter, {.name = "Home", .rsn = kPsk});
    ExpectNotJoined(L"open", kSecret, L"it is open, and a pass phrase was given");
    ExpectNotJoined(L"work", kSecret, L"it wants an account");
    ExpectNotJoined(L"old", kSecret, L"it is protected by WEP only");
    ExpectNotJoined(L"peer", L"", L"it is not an access point");
    ExpectNotJoined(L"Home", L"", L"it needs a pass phrase, and the host has none saved");
    ExpectNotJoined(L"Home", L"short", L"a pass phrase has 8 to 63 characters");
    ExpectNotJoined(L"", kSecret, L"no network name");
    ExpectNotJoined(std::wstring(33, L'x'), kSecret, L"no network can have that name");
    EXPECT_THAT(service.Joinings(), IsEmpty());
}

TEST_F(Wifi, TwoThreadsMayUseItAtOnce) {
    service.Add(adapter, {.name = "Home"});
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&right] {
            for (int round = 0; round < 3; ++round) {
                right += Scan().size() == 1;
                QueryConnected();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 12);
}

TEST_F(Wifi, KeepsNoFileOpen) {
    service.Add(adapter, {.name = "Home"});
    const auto count = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    Scan();
    const auto before = count();
    Scan();
    QueryConnected();
    Connect(L"Home", L"");
    service.SetScans("denied");
    Connect(L"Nowhere", L"");
    EXPECT_EQ(count(), before);
}

}  // namespace

}  // namespace HostTest
