// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/wlan_profile.h"

#include <gmock/gmock.h>

namespace HostTest {

namespace {

using Host::WlanProfile;
using testing::HasSubstr;
using testing::Not;

Host::AccessPoint Point(const std::string& name, unsigned protection) {
    Host::AccessPoint point;
    point.name = name;
    point.protection = protection;
    return point;
}

TEST(WlanProfile, OfAProtectedNetwork) {
    EXPECT_EQ(WlanProfile(Point("Home", Host::kWpa2Personal), "correct horse"),
              L"<?xml version=\"1.0\"?>"
              L"<WLANProfile xmlns=\"http://www.microsoft.com/networking/WLAN/profile/v1\">"
              L"<name>Home</name>"
              L"<SSIDConfig><SSID><hex>486F6D65</hex></SSID><nonBroadcast>true</nonBroadcast>"
              L"</SSIDConfig>"
              L"<connectionType>ESS</connectionType><connectionMode>manual</connectionMode>"
              L"<MSM><security><authEncryption><authentication>WPA2PSK</authentication>"
              L"<encryption>AES</encryption><useOneX>false</useOneX></authEncryption>"
              L"<sharedKey><keyType>passPhrase</keyType><protected>false</protected>"
              L"<keyMaterial>correct horse</keyMaterial></sharedKey></security></MSM>"
              L"</WLANProfile>");
}

TEST(WlanProfile, OfAnOpenNetworkHasNoKey) {
    const std::wstring profile = WlanProfile(Point("Printer-Setup", 0), "");
    EXPECT_THAT(profile, HasSubstr(L"<authentication>open</authentication>"
                                   L"<encryption>none</encryption>"));
    EXPECT_THAT(profile, Not(HasSubstr(L"sharedKey")));
}

TEST(WlanProfile, NamesTheProtectionThatIsBestSupported) {
    const auto method = [](unsigned protection, const char* passPhrase) {
        const std::wstring profile = WlanProfile(Point("x", protection), passPhrase);
        const std::size_t start = profile.find(L"<authentication>") + 16;
        return profile.substr(start, profile.find(L"</authentication>") - start);
    };
    EXPECT_EQ(method(Host::kWpaPersonal, "12345678"), L"WPAPSK");
    EXPECT_EQ(method(Host::kWpaPersonal | Host::kWpa2Personal, "12345678"), L"WPA2PSK");
    EXPECT_EQ(method(Host::kWpa2Personal | Host::kWpa3Personal, "12345678"), L"WPA2PSK");
    EXPECT_EQ(method(Host::kWpa3Personal, "12345678"), L"WPA3SAE");
    EXPECT_EQ(method(Host::kOpportunistic, ""), L"OWE");
}

TEST(WlanProfile, OfTheFirstWpaTakesAesWhereItIsSpoken) {
    Host::AccessPoint point = Point("x", Host::kWpaPersonal);
    EXPECT_THAT(WlanProfile(point, "12345678"), HasSubstr(L"<encryption>TKIP</encryption>"));
    point.aesWithWpa = true;
    EXPECT_THAT(WlanProfile(point, "12345678"), HasSubstr(L"<encryption>AES</encryption>"));
}

TEST(WlanProfile, OfAKeyOf64DigitsSaysThatItIsOne) {
    EXPECT_THAT(WlanProfile(Point("x", Host::kWpa2Personal), std::string(64, 'a')),
                HasSubstr(L"<keyType>networkKey</keyType>"));
}

TEST(WlanProfile, KeepsMarkupOutOfNamesAndPassPhrases) {
    const std::wstring profile =
        WlanProfile(Point("<a>&\x01\xE9", Host::kWpa2Personal), "</keyMaterial>&<x>");
    EXPECT_THAT(profile, HasSubstr(L"<name>&lt;a&gt;&amp;_\u00E9</name>"));
    EXPECT_THAT(profile, HasSubstr(L"<hex>3C613E2601E9</hex>"));
    EXPECT_THAT(profile,
                HasSubstr(L"<keyMaterial>&lt;/keyMaterial&gt;&amp;&lt;x&gt;</keyMaterial>"));
}

}  // namespace

}  // namespace HostTest
