// SPDX-License-Identifier: Apache-2.0

// What is left of a pass phrase in the memory of a process that has joined a network with it.

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "tests/host/PrinterDiscoverAPI/wifi/mock_network_manager_linux.h"
#include "tests/host/PrinterDiscoverAPI/wifi/wifi_test.h"
#include "tests/support/own_memory_linux.h"

namespace HostTest {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

#define PASS_PHRASE "a long way round, correct horse 7"
constexpr std::string_view kEndOfSecret = "correct horse 7";

// In a process of its own, which may keep what it likes.
void Apart(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
}

void OfferNetwork(const char* outcome) {
    Apart([outcome] {
        MockNetworkManager service;
        const std::string adapter = service.AddAdapter("wlan0");
        const std::string point = service.Add(adapter, {.name = "Home", .rsn = kPsk});
        service.SetPassPhrase(point, PASS_PHRASE, outcome);
    });
}

bool ConnectHome() {
    return PrinterWifiAPI::GetInstance().ConnectAP(L"Home", L"" PASS_PHRASE);
}

TEST(WifiMemory, IsSearched) {
    std::string copy(PASS_PHRASE);
    EXPECT_THAT(PlacesInOwnMemory(kEndOfSecret), testing::Not(IsEmpty()));
    explicit_bzero(copy.data(), copy.size());
    EXPECT_THAT(PlacesInOwnMemory(kEndOfSecret), IsEmpty());
    std::wstring wide(L"" PASS_PHRASE);
    EXPECT_THAT(PlacesInOwnMemory(kEndOfSecret), testing::Not(IsEmpty()));
    explicit_bzero(wide.data(), wide.size() * sizeof(wchar_t));
    EXPECT_THAT(PlacesInOwnMemory(kEndOfSecret), IsEmpty());
}

TEST(WifiMemory, HoldsNoPassPhraseAfterAJoin) {
    OfferNetwork("join");
    EXPECT_TRUE(ConnectHome());
    EXPECT_THAT(PlacesThatStay(kEndOfSecret), IsEmpty());
}

TEST(WifiMemory, HoldsNoPassPhraseAfterAServiceThatQuotesIt) {
    OfferNetwork("talkative");
    EXPECT_FALSE(ConnectHome());
    EXPECT_THAT(PlacesThatStay(kEndOfSecret), IsEmpty());
    EXPECT_EQ(LastProblem().reason,
              "NetworkManager says: psk: '***' is not good, not good at all is '***'");
}

TEST(WifiMemory, HoldsNoPassPhraseThatIsRefused) {
    EXPECT_FALSE(PrinterWifiAPI::GetInstance().ConnectAP(
        L"Home", L"one that is too long for any network, whatever it is: " PASS_PHRASE));
    EXPECT_THAT(PlacesThatStay(kEndOfSecret), IsEmpty());
}

}  // namespace

}  // namespace HostTest
