// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <stdexcept>
#include <thread>

#include "tests/host/PrinterDiscoverAPI/wifi/elements.h"
#include "tests/host/PrinterDiscoverAPI/wifi/scripted_wlanapi_windows.h"
#include "tests/host/PrinterDiscoverAPI/wifi/wifi_test.h"

namespace HostTest {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Clock = std::chrono::steady_clock;
using ScriptedWlan::Join;
using ScriptedWlan::Point;
using ScriptedWlan::Scans;
using ScriptedWlan::Seen;

const std::wstring kSecret = L"correct horse 7";
const std::string kSecretText = "correct horse 7";

// The one that stands beside this program.
ScriptedWlan::Service& TheScriptedService() {
    const HMODULE library =
        LoadLibraryExW(L"wlanapi.dll", nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR);
    const FARPROC service = GetProcAddress(library, "ScriptedWlanService");
    if (service == nullptr) {
        throw std::runtime_error("the Wi-Fi library is not the scripted one");
    }
    return reinterpret_cast<ScriptedWlan::TheService>(reinterpret_cast<void*>(service))();
}

class WifiWithoutAdapter : public testing::Test {
protected:
    ~WifiWithoutAdapter() override {
        ExpectNeverLogged(kSecret);
        EXPECT_EQ(service.handles, 0);
        EXPECT_EQ(service.registrations, 0);
        EXPECT_EQ(service.blocks, 0);
    }

    ScriptedWlan::Service& service = TheScriptedService();
};

class Wifi : public WifiWithoutAdapter {
protected:
    Wifi() { service.adapters.resize(1); }

    ScriptedWlan::Adapter& Adapter() { return service.adapters[0]; }
    Point& Add(Point point) {
        Adapter().points.push_back(std::move(point));
        return Adapter().points.back();
    }

    // Protected by the pass phrase, or by another one.
    Point& AddProtected(const std::string& name, const std::wstring& savedAs = {}) {
        return Add({.name = name,
                    .elements = Rsn({2}),
                    .isPrivate = true,
                    .passPhrase = kSecretText,
                    .savedAs = savedAs});
    }

    // Waits until the adapter is at joining that network.
    bool Begins(const std::string& name) {
        return Becomes([this, &name] {
            const std::lock_guard lock(service.mutex);
            return Adapter().joining == name;
        });
    }

    void ExpectNotJoined(const std::wstring& ssid, const std::wstring& passPhrase,
                         const std::wstring& reason) {
        EXPECT_FALSE(Connect(ssid, passPhrase));
        ExpectNeverLogged(kSecret);
        EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_ERROR,
                                                    L"cannot join \"" + ssid + L"\": " + reason)));
    }
};

// --- scan
// -----------------------------------------------------------------------------------------

TEST_F(Wifi, AScanGivesTheNetworksInRange) {
    Add({.name = "Home", .quality = 82, .elements = Rsn({2}), .isPrivate = true});
    Add({.name = "Caf\xC3\xA9", .quality = 60});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 82, WLAN_SECURITY_WPA_PERSONAL, false),
                                    IsNetwork(L"Caf\u00E9", 60, kOpen, false)));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Wifi, AScanIsAFreshOne) {
    Add({.name = "Switched on just now", .seen = Seen::afterScan});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Switched on just now", 50, kOpen, false)));
    EXPECT_EQ(service.scans, 1);
}

TEST_F(Wifi, WhatIsKnownNeedsNoScan) {
    Add({.name = "Home", .quality = 82});
    Add({.name = "Switched on just now", .seen = Seen::afterScan});
    EXPECT_THAT(Known(), ElementsAre(IsNetwork(L"Home", 82, kOpen, false)));
    EXPECT_EQ(service.scans, 0);
}

TEST_F(Wifi, AScanUsesAllAdapters) {
    service.adapters.push_back({.number = 2, .scanSteps = 4});
    service.adapters.push_back({.number = 3, .state = wlan_interface_state_not_ready});
    Add({.name = "One", .quality = 30, .seen = Seen::afterScan});
    service.adapters[1].points = {{.name = "One", .quality = 40, .seen = Seen::afterScan},
                                  {.name = "Two", .quality = 20, .seen = Seen::afterScan}};
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"One", 40, kOpen, false),
                                    IsNetwork(L"Two", 20, kOpen, false)));
    EXPECT_EQ(service.scans, 2);
}

TEST_F(Wifi, AScanThatFailsOrIsRunning_GivesWhatIsKnown) {
    Add({.name = "Home"});
    Adapter().scans = Scans::fail;
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 50, kOpen, false)));
    EXPECT_LT(SecondsSince(start), 3);
}

TEST_F(Wifi, AScanThatDoesNotEnd_IsNotAwaitedForEver) {
    Add({.name = "Home"});
    Adapter().scans = Scans::endless;
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Home", 50, kOpen, false)));
    EXPECT_NEAR(SecondsSince(start), 10, 1);
}

TEST_F(Wifi, AScanThatIsNotAllowed_SaysSo) {
    Adapter().scanError = ERROR_ACCESS_DENIED;
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"Windows does not allow it")));
    Adapter().scanError = ERROR_SUCCESS;
    service.listError = ERROR_ACCESS_DENIED;
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING, L"Windows does not allow it")));
}

TEST_F(Wifi, AScanTellsProtectionAndWhatCannotBeOffered) {
    Add({.name = "wpa", .quality = 90, .elements = Wpa({2}), .isPrivate = true});
    Add({.name = "wpa3", .quality = 85, .elements = Rsn({8}), .isPrivate = true});
    Add({.name = "mixed", .quality = 80, .elements = Rsn({1, 2}), .isPrivate = true});
    Add({.name = "work", .quality = 75, .elements = Rsn({1}), .isPrivate = true});
    Add({.name = "old", .quality = 70, .isPrivate = true});
    Add({.name = "owe", .quality = 65, .elements = Rsn({18}), .isPrivate = true});
    Add({.name = "peer", .quality = 60, .type = dot11_BSS_type_independent});
    Add({.name = "strong", .quality = 250});
    EXPECT_THAT(
        Scan(),
        ElementsAre(IsNetwork(L"strong", 100, kOpen, false),
                    IsNetwork(L"wpa", 90, WLAN_SECURITY_WPA_PERSONAL, false),
                    IsNetwork(L"wpa3", 85, WLAN_SECURITY_WPA_PERSONAL, false),
                    IsNetwork(L"mixed", 80,
                              WLAN_SECURITY_WPA_PERSONAL | WLAN_SECURITY_WPA_ENTERPRISE, false),
                    IsNetwork(L"work", 75, WLAN_SECURITY_WPA_ENTERPRISE, true),
                    IsNetwork(L"old", 70, WLAN_SECURITY_WEP, true),
                    IsNetwork(L"owe", 65, kOpen, true), IsNetwork(L"peer", 60, kOpen, true)));
}

TEST_F(Wifi, AScanKeepsEachHiddenNetworkAndNamesThatAreNoText) {
    Add({.name = "", .quality = 20, .elements = Rsn({2}), .isPrivate = true});
    Add({.name = std::string(7, '\0'), .quality = 30});
    Add({.name = "Caf\xE9", .quality = 40});
    EXPECT_THAT(Scan(), ElementsAre(IsNetwork(L"Caf\u00E9", 40, kOpen, true),
                                    IsNetwork(L"", 30, kOpen, true),
                                    IsNetwork(L"", 20, WLAN_SECURITY_WPA_PERSONAL, true)));
}

TEST_F(Wifi, WhatLiesOutsideOfAListIsNotRead) {
    service.spoilsLists = true;
    for (int index = 0; index < 4; ++index) {
        Add({.name = "Home" + std::to_string(index), .elements = Rsn({2}), .isPrivate = true});
    }
    const Networks networks = Scan();
    ASSERT_EQ(networks.size(), 4U);
    EXPECT_EQ(networks[0].attributes.security, WLAN_SECURITY_WEP);
}

// --- no Wi-Fi
// -------------------------------------------------------------------------------------

TEST_F(WifiWithoutAdapter, IsNoWifi) {
    ExpectNoWifi(L"the host has no Wi-Fi adapter");
    ExpectNotConnected();
}

TEST_F(WifiWithoutAdapter, WithoutTheService_SaysSo) {
    service.openError = ERROR_SERVICE_NOT_ACTIVE;
    ExpectNoWifi(L"the system's Wi-Fi service is not running");
    ExpectNotConnected();
}

TEST_F(WifiWithoutAdapter, AnErrorWithoutWords_IsGivenByItsNumber) {
    service.openError = ERROR_GEN_FAILURE;
    ExpectNoWifi(L"WlanOpenHandle failed: error 31");
}

TEST_F(Wifi, WhereTheRadioIsOff_IsSaidToBe) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true});
    Adapter().softwareOff = true;
    ExpectNoWifi(L"Wi-Fi is switched off");
    Adapter().hardwareOff = true;
    ExpectNoWifi(L"Wi-Fi is switched off by the host's hardware");
}

TEST_F(Wifi, AnAdapterThatIsNotReady_IsSaidToBe) {
    Adapter().state = wlan_interface_state_not_ready;
    ExpectNoWifi(L"Scripted Wireless Adapter is not ready");
}

// Wherever it ends.
TEST_F(Wifi, AServiceThatEnds_EndsAScan) {
    Add({.name = "Home"});
    for (int after = 1; after < 7; ++after) {
        service.error = ERROR_SUCCESS;
        service.endAfter = after;
        const auto start = Clock::now();
        const bool ended = Scan().empty();
        EXPECT_LT(SecondsSince(start), 3) << after;
        if (ended) {
            EXPECT_THAT(TakeLines(), ElementsAre(IsLine(LOG_LEVEL_WARNING,
                                                        L"the system's Wi-Fi service has ended")))
                << after;
        }
        EXPECT_EQ(ended, service.error != ERROR_SUCCESS) << after;
    }
}

TEST_F(Wifi, AServiceThatEndsWhileAScanIsAwaited_EndsIt) {
    Adapter().scans = Scans::endless;
    std::thread ending([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        service.error = RPC_S_SERVER_UNAVAILABLE;
    });
    const auto start = Clock::now();
    EXPECT_THAT(Scan(), IsEmpty());
    EXPECT_LT(SecondsSince(start), 3);
    ending.join();
    EXPECT_THAT(TakeLines(),
                ElementsAre(IsLine(LOG_LEVEL_WARNING, L"the system's Wi-Fi service has ended")));
}

// --- connected
// ------------------------------------------------------------------------------------

TEST_F(Wifi, AHostThatIsJoinedToNothing_SaysNothing) {
    Add({.name = "Home"});
    ExpectNotConnected();
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Wifi, AHostKnowsWhatItIsJoinedTo) {
    Add({.name = "Home"});
    Add({.name = "Caf\xC3\xA9", .lastOfAddress = 0xCD});
    ASSERT_TRUE(Connect(L"Caf\u00E9", L""));
    const Connected connected = QueryConnected();
    EXPECT_EQ(connected.ssid, L"Caf\u00E9");
    EXPECT_EQ(connected.hardwareAddress, L"00:23:F8:7E:AB:CD");
    EXPECT_EQ(connected.interfaceName, L"Scripted Wireless Adapter");
    EXPECT_THAT(TakeLines(), IsEmpty());
}

// --- join
// -----------------------------------------------------------------------------------------

TEST_F(Wifi, TheRightPassPhraseJoins) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .passPhrase = kSecretText});
    EXPECT_TRUE(Connect(L"Home", kSecret));
    EXPECT_THAT(TakeLines(), IsEmpty());
    ASSERT_EQ(service.connections.size(), 1U);
    EXPECT_EQ(service.connections[0].mode, wlan_connection_mode_temporary_profile);
    EXPECT_THAT(service.connections[0].profile, HasSubstr(L"<authentication>WPA2PSK<"));
    EXPECT_THAT(service.connections[0].profile, HasSubstr(L"<hex>486F6D65</hex>"));
}

TEST_F(Wifi, TheFirstWpaIsJoinedWithTheCipherThatIsSpokenThere) {
    Add({.name = "aes", .elements = Wpa({2}, {4}), .isPrivate = true, .passPhrase = kSecretText});
    Add({.name = "tkip", .elements = Wpa({2}, {2}), .isPrivate = true, .passPhrase = kSecretText});
    EXPECT_TRUE(Connect(L"aes", kSecret));
    EXPECT_TRUE(Connect(L"tkip", kSecret));
    EXPECT_THAT(service.connections.at(0).profile, HasSubstr(L"<encryption>AES<"));
    EXPECT_THAT(service.connections.at(1).profile, HasSubstr(L"<encryption>TKIP<"));
}

TEST_F(Wifi, AWrongPassPhraseIsSaidToBe) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .passPhrase = "another one"});
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"the pass phrase is wrong");
    EXPECT_LT(SecondsSince(start), 2);
    EXPECT_EQ(service.disconnections, 0);
}

TEST_F(Wifi, AnOpenNetworkIsJoinedWithoutAPassPhrase) {
    Add({.name = "Printer-Setup"});
    EXPECT_TRUE(Connect(L"Printer-Setup", L""));
    EXPECT_THAT(service.connections.at(0).profile, Not(HasSubstr(L"sharedKey")));
}

TEST_F(Wifi, ASavedNetworkIsJoinedWithWhatIsSaved) {
    Add({.name = "Home",
         .elements = Rsn({2}),
         .isPrivate = true,
         .passPhrase = kSecretText,
         .savedAs = L"My Home"});
    EXPECT_TRUE(Connect(L"Home", L""));
    EXPECT_EQ(service.connections.at(0).mode, wlan_connection_mode_profile);
    EXPECT_EQ(service.connections.at(0).profile, L"My Home");
}

TEST_F(Wifi, WhatGoesWrongIsSaid) {
    Point& home =
        Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .passPhrase = kSecretText});
    home.join = Join::notAvailable;
    ExpectNotJoined(L"Home", kSecret, L"the network is not in range any more");
    home.join = Join::unknown;
    ExpectNotJoined(L"Home", kSecret, L"the system's Wi-Fi service says: The driver is on fire.");
}

TEST_F(Wifi, WhatTheServiceSaysIsLoggedWithoutThePassPhrase) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::unknown});
    service.words = kSecret + L" is no key, is " + kSecret;
    ExpectNotJoined(L"Home", kSecret, L"the system's Wi-Fi service says: *** is no key, is ***");
}

TEST_F(Wifi, AnAttemptThatFailsAndIsNotRepeated_EndsIt) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::onlyAttempt});
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"the network is not in range any more");
    EXPECT_LT(SecondsSince(start), 5);
    EXPECT_EQ(service.disconnections, 1);
}

TEST_F(Wifi, AnAttemptThatFailsAndEndedWithoutAWord_NeedsNoEnd) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::attemptEnds});
    ExpectNotJoined(L"Home", kSecret, L"the network is not in range any more");
    EXPECT_EQ(service.disconnections, 0);
}

TEST_F(Wifi, WhatSomeoneElseJoinsMeanwhileIsNotEnded) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::supplanted});
    for (const bool tells : {false, true}) {
        Adapter().tellsJoining = tells;
        ExpectNotJoined(L"Home", kSecret, L"the network is not in range any more");
        EXPECT_EQ(service.disconnections, 0) << tells;
    }
}

TEST_F(Wifi, AnAttemptThatDoesNotEnd_IsNotAwaitedForEverAndTakesTheHostBack) {
    Add({.name = "Printer-Setup"});
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::hangs});
    ASSERT_TRUE(Connect(L"Printer-Setup", L""));
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"not joined within 30 s");
    EXPECT_NEAR(SecondsSince(start), 30, 1);
    EXPECT_EQ(service.disconnections, 1);
    EXPECT_TRUE(Arrives(L"Printer-Setup"));
}

TEST_F(Wifi, AnAttemptThatFails_TakesTheHostBackToASavedNetwork) {
    AddProtected("Home", L"My Home");
    AddProtected("Other").passPhrase = "another one";
    ASSERT_TRUE(Connect(L"Home", L""));
    ExpectNotJoined(L"Other", kSecret, L"the pass phrase is wrong");
    EXPECT_TRUE(Arrives(L"Home"));
    EXPECT_EQ(service.connections.back().mode, wlan_connection_mode_profile);
    EXPECT_EQ(service.connections.back().profile, L"My Home");
}

TEST_F(Wifi, AnAttemptThatFails_TakesTheHostBackToASavedNetworkThatHidesItsName) {
    AddProtected("Home", L"My Home").seen = Seen::whenAsked;
    AddProtected("Other").passPhrase = "another one";
    Adapter().joined = 0;
    Adapter().state = wlan_interface_state_connected;
    ExpectNotJoined(L"Other", kSecret, L"the pass phrase is wrong");
    EXPECT_TRUE(Arrives(L"Home"));
}

// What the system last saw is old after minutes on another network.
TEST_F(Wifi, AnAttemptThatFails_LooksForANetworkThatWasNotSeenLately) {
    Add({.name = "Cafe"});
    AddProtected("Other").passPhrase = "another one";
    ASSERT_TRUE(Connect(L"Cafe", L""));
    Adapter().points[0].seen = Seen::afterScan;
    ExpectNotJoined(L"Other", kSecret, L"the pass phrase is wrong");
    EXPECT_EQ(service.scans, 1);
    EXPECT_TRUE(Arrives(L"Cafe"));
}

TEST_F(Wifi, AnAttemptThatFails_TakesTheHostBackToASavedNetworkThatNoScanShows) {
    AddProtected("Home", L"My Home");
    AddProtected("Other").passPhrase = "another one";
    ASSERT_TRUE(Connect(L"Home", L""));
    Adapter().points[0].seen = Seen::never;
    ExpectNotJoined(L"Other", kSecret, L"the pass phrase is wrong");
    EXPECT_TRUE(Arrives(L"Home"));
    EXPECT_EQ(service.scans, 0);
}

TEST_F(Wifi, AnAttemptThatFails_SaysItWhenThereIsNoWayBack) {
    AddProtected("Home");
    AddProtected("Other").passPhrase = "another one";
    for (const wchar_t* why : {L"the network Home is not saved", L"the network Home is not in"}) {
        Adapter().points[0].seen = Seen::atOnce;
        ASSERT_TRUE(Connect(L"Home", kSecret));
        Adapter().points[0].seen =
            std::wstring_view(why).ends_with(L"saved") ? Seen::atOnce : Seen::never;
        EXPECT_FALSE(Connect(L"Other", kSecret));
        EXPECT_THAT(
            TakeLines(),
            ElementsAre(
                IsLine(LOG_LEVEL_WARNING, L"could not rejoin the previous network: "s + why),
                IsLine(LOG_LEVEL_ERROR, L"cannot join \"Other\": the pass phrase is")));
    }
}

TEST_F(Wifi, WhatIsBrokenOffIsUndone) {
    AddProtected("Home", L"My Home");
    AddProtected("Other").join = Join::hangs;
    ASSERT_TRUE(Connect(L"Home", L""));
    std::thread joining([this] { ExpectNotJoined(L"Other", kSecret, L"it was broken off"); });
    EXPECT_TRUE(Begins("Other"));
    const auto start = Clock::now();
    PrinterWifiBreakOff();
    EXPECT_LT(SecondsSince(start), 3);
    EXPECT_EQ(service.connections.size(), 3U) << "it is undone when the call is back";
    joining.join();
    EXPECT_EQ(service.disconnections, 1);
    EXPECT_TRUE(Arrives(L"Home"));
}

TEST_F(Wifi, WhatIsBrokenOffLooksNoLongerForItsNetwork) {
    Adapter().scans = Scans::endless;
    std::thread joining([this] { ExpectNotJoined(L"Other", kSecret, L"it was broken off"); });
    EXPECT_TRUE(Becomes([this] { return service.scans > 0; }));
    const auto start = Clock::now();
    PrinterWifiBreakOff();
    EXPECT_LT(SecondsSince(start), 3);
    joining.join();
}

TEST_F(Wifi, AHostThatWasTakenElsewhereGoesBackToWhereItWas) {
    Add({.name = "Printer-Setup"});
    Add({.name = "Office"});
    Add({.name = "Home"});
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

TEST_F(Wifi, AVisitEndsWhereTheHostWas) {
    AddProtected("Home", L"My Home");
    Add({.name = "Printer-Setup"});
    ASSERT_TRUE(Connect(L"Home", L""));
    ASSERT_EQ(PrinterWifiVisit("Printer-Setup", 5), 1);
    EXPECT_EQ(QueryConnected().ssid, L"Printer-Setup");
    PrinterWifiEndVisit();
    EXPECT_TRUE(Arrives(L"Home"));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Wifi, AnAdapterThatGoesDuringAJoin_EndsIt) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::adapterGoes});
    ExpectNotJoined(L"Home", kSecret, L"the Wi-Fi adapter was removed");
}

TEST_F(Wifi, AServiceThatEndsDuringAJoin_EndsIt) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .join = Join::hangs});
    std::thread ending([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        service.error = RPC_S_SERVER_UNAVAILABLE;
    });
    const auto start = Clock::now();
    ExpectNotJoined(L"Home", kSecret, L"the system's Wi-Fi service has ended");
    EXPECT_LT(SecondsSince(start), 3);
    ending.join();
}

TEST_F(Wifi, AServiceThatEnds_EndsAJoin) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true, .passPhrase = kSecretText});
    for (int after = 1; after < 7; ++after) {
        service.error = ERROR_SUCCESS;
        service.endAfter = after;
        const bool joined = Connect(L"Home", kSecret);
        EXPECT_EQ(joined, service.error == ERROR_SUCCESS) << after;
        EXPECT_EQ(TakeLines().size(), joined ? 0U : 1U) << after;
    }
}

TEST_F(Wifi, AHiddenNetworkIsAskedFor) {
    Add({.name = "Secret Garden",
         .elements = Rsn({2}),
         .isPrivate = true,
         .seen = Seen::whenAsked,
         .passPhrase = kSecretText});
    EXPECT_TRUE(Connect(L"Secret Garden", kSecret));
    EXPECT_THAT(service.connections.at(0).profile, HasSubstr(L"<nonBroadcast>true<"));
}

TEST_F(Wifi, ANetworkThatIsNotThere_IsLookedForAndSaidToBeMissing) {
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true});
    ExpectNotJoined(L"Homes", kSecret, L"no access point of that name is in range");
    EXPECT_EQ(service.scans, 1);
}

TEST_F(Wifi, ANameThatIsNoText_IsJoinedAsAScanShowsIt) {
    Add({.name = "Caf\xE9"});
    ASSERT_TRUE(Connect(Scan().at(0).ssid, L""));
    EXPECT_EQ(service.connections.at(0).name, "Caf\xE9");
    EXPECT_THAT(service.connections.at(0).profile, HasSubstr(L"<hex>436166E9</hex>"));
    EXPECT_EQ(QueryConnected().ssid, L"Caf\u00E9");
}

TEST_F(Wifi, WhatDoesNotFitIsRefusedWithoutAnAttempt) {
    Add({.name = "open"});
    Add({.name = "work", .elements = Rsn({1}), .isPrivate = true});
    Add({.name = "old", .isPrivate = true});
    Add({.name = "Home", .elements = Rsn({2}), .isPrivate = true});
    ExpectNotJoined(L"open", kSecret, L"it is open, and a pass phrase was given");
    ExpectNotJoined(L"work", kSecret, L"it wants an account");
    ExpectNotJoined(L"old", kSecret, L"it is protected by WEP only");
    ExpectNotJoined(L"Home", L"", L"it needs a pass phrase, and the host has none saved");
    ExpectNotJoined(L"Home", L"short", L"a pass phrase has 8 to 63 characters");
    ExpectNotJoined(L"", kSecret, L"no network name");
    EXPECT_THAT(service.connections, IsEmpty());
}

TEST_F(Wifi, TwoThreadsMayUseItAtOnce) {
    Add({.name = "Home"});
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&right] {
            for (int round = 0; round < 5; ++round) {
                right += Scan().size() == 1;
                QueryConnected();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 20);
}

}  // namespace

}  // namespace HostTest
