// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/network_list.h"

#include <gmock/gmock.h>

#include "tests/host/PrinterDiscoverAPI/wifi/networks.h"

namespace HostTest {

namespace {

using Host::AccessPoint;
using Host::NetworksOf;
using testing::ElementsAre;
using testing::IsEmpty;

AccessPoint Point(const std::string& name, int quality, unsigned protection = 0) {
    AccessPoint point;
    point.name = name;
    point.quality = quality;
    point.protection = protection;
    return point;
}

TEST(NetworkList, IsEmptyWhereNothingIsInRange) {
    EXPECT_THAT(NetworksOf({}), IsEmpty());
}

TEST(NetworkList, HasOneEntryANameWithTheStrongestAttributes) {
    EXPECT_THAT(NetworksOf({Point("Home", 40), Point("Home", 80, Host::kWpa2Personal),
                            Point("Work", 60), Point("Home", 50)}),
                ElementsAre(IsNetwork(L"Home", 80, WLAN_SECURITY_WPA_PERSONAL, false),
                            IsNetwork(L"Work", 60, kOpen, false)));
}

TEST(NetworkList, KeepsNamesApartThatOnlyLookAlike) {
    EXPECT_THAT(NetworksOf({Point("Caf\xE9", 40), Point("Caf\xC3\xA9", 30)}),
                ElementsAre(IsNetwork(L"Caf\u00E9", 40, kOpen, true),
                            IsNetwork(L"Caf\u00E9", 30, kOpen, false)));
}

TEST(NetworkList, KeepsEachAccessPointWithoutAName) {
    EXPECT_THAT(NetworksOf({Point("", 10), Point("", 20)}),
                ElementsAre(IsNetwork(L"", 20, kOpen, true), IsNetwork(L"", 10, kOpen, true)));
}

TEST(NetworkList, KeepsTheQualityWithinItsBounds) {
    EXPECT_THAT(NetworksOf({Point("a", 255), Point("b", -5)}),
                ElementsAre(IsNetwork(L"a", 100, kOpen, false), IsNetwork(L"b", 0, kOpen, false)));
}

}  // namespace

}  // namespace HostTest
