// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/wifi/windows/information_elements.h"

#include <gtest/gtest.h>

#include "host/PrinterDiscoverAPI/wifi/access_point.h"
#include "tests/host/PrinterDiscoverAPI/wifi/elements.h"

namespace HostTest {

namespace {

using Host::ProtectionOf;

const std::string kName = InformationElement(0, "Home");
const std::string kRates = InformationElement(1, "\x82\x84\x8b\x96");

TEST(InformationElements, WithoutProtection_AreOpen) {
    EXPECT_EQ(ProtectionOf(kName + kRates, false), 0U);
    EXPECT_EQ(ProtectionOf({}, false), 0U);
}

TEST(InformationElements, ThatOnlyTheCapabilitiesProtect_AreWep) {
    EXPECT_EQ(ProtectionOf(kName + kRates, true), Host::kWep);
    EXPECT_EQ(ProtectionOf({}, true), Host::kWep);
}

TEST(InformationElements, TellEachProtection) {
    EXPECT_EQ(ProtectionOf(kName + Rsn({2}), true), Host::kWpa2Personal);
    EXPECT_EQ(ProtectionOf(kName + Rsn({6}), true), Host::kWpa2Personal);
    EXPECT_EQ(ProtectionOf(kName + Rsn({8}), true), Host::kWpa3Personal);
    EXPECT_EQ(ProtectionOf(kName + Rsn({18}), true), Host::kOpportunistic);
    EXPECT_EQ(ProtectionOf(kName + Rsn({1}), true), Host::kEnterprise);
    EXPECT_EQ(ProtectionOf(kName + Rsn({5}), true), Host::kEnterprise);
    EXPECT_EQ(ProtectionOf(kName + Wpa({2}), true), Host::kWpaPersonal);
    EXPECT_EQ(ProtectionOf(kName + Wpa({1}), true), Host::kEnterprise);
}

TEST(InformationElements, TellSeveralProtections) {
    EXPECT_EQ(ProtectionOf(Rsn({2, 8}), true), Host::kWpa2Personal | Host::kWpa3Personal);
    EXPECT_EQ(ProtectionOf(Rsn({1, 2}), true), Host::kWpa2Personal | Host::kEnterprise);
    EXPECT_EQ(ProtectionOf(Wpa({2}) + kRates + Rsn({2}), true),
              Host::kWpaPersonal | Host::kWpa2Personal);
}

TEST(InformationElements, TellWhetherWpaTakesAes) {
    EXPECT_TRUE(Host::TakesAesWithWpa(kName + Wpa({2}, {4})));
    EXPECT_TRUE(Host::TakesAesWithWpa(Rsn({2}) + Wpa({2}, {2, 4})));
    EXPECT_FALSE(Host::TakesAesWithWpa(kName + Wpa({2}, {2})));
    EXPECT_FALSE(Host::TakesAesWithWpa(kName + Wpa({4}, {2})));
    EXPECT_FALSE(Host::TakesAesWithWpa(kName + Rsn({2})));
    EXPECT_FALSE(Host::TakesAesWithWpa({}));
    const std::string whole = Wpa({2}, {4});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(Host::TakesAesWithWpa(whole.substr(0, size))) << size;
    }
}

TEST(InformationElements, OfOtherVendors_CountForNothing) {
    EXPECT_EQ(ProtectionOf(InformationElement(221, std::string("\x00\x50\xF2\x04 whatever", 13)) +
                               InformationElement(221, "\x01"),
                           false),
              0U);
}

TEST(InformationElements, ThatAreCutOff_CountForNothing) {
    const std::string whole = Rsn({2});
    for (std::size_t size = 0; size + 2 < whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        EXPECT_EQ(ProtectionOf(cut, false), 0U) << size;
        if (size >= 2) {
            // Cut off inside an element that says so itself.
            const std::string body = whole.substr(2, size - 2);
            EXPECT_EQ(ProtectionOf(InformationElement(48, body), false), 0U) << size;
        }
    }
}

TEST(InformationElements, WithSuiteNumbersThatAreTooLarge_CountForNothing) {
    std::string element = Rsn({2});
    element[8] = '\xFF';
    element[9] = '\xFF';
    EXPECT_EQ(ProtectionOf(element, false), 0U);
}

}  // namespace

}  // namespace HostTest
