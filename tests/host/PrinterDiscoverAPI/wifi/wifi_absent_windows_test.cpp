// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterDiscoverAPI/wifi/wifi_test.h"

namespace HostTest {

namespace {

using testing::IsEmpty;
using testing::Not;

// Against the system's own library, whatever it has.
TEST(WifiOfTheSystem, DoesNotJoinWhatIsNotThere) {
    EXPECT_FALSE(Connect(L"no network is called this", L"correct horse 7"));
    ExpectNeverLogged(L"correct horse 7");
    EXPECT_THAT(TakeLines(), Not(IsEmpty()));
}

TEST(WifiOfTheSystem, ScansAndSaysWhyNotIfItCannot) {
    const Networks networks = Scan();
    EXPECT_NE(networks.empty(), TakeLines().empty());
}

TEST(WifiOfTheSystem, TellsAllOfWhatTheHostIsJoinedToOrNothing) {
    const Connected connected = QueryConnected();
    EXPECT_EQ(connected.ssid.empty(), connected.hardwareAddress.empty());
    EXPECT_EQ(connected.ssid.empty(), connected.interfaceName.empty());
}

}  // namespace

}  // namespace HostTest
