// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "modules/driverless/discovery/asked_address.h"

namespace Driverless {
namespace {

constexpr std::uint32_t Address(std::uint32_t a, std::uint32_t b, std::uint32_t c,
                                std::uint32_t d) {
    return a << 24 | b << 16 | c << 8 | d;
}

const std::vector<OwnNetwork> kNetworks{{Address(10, 99, 0, 2), 0xFFFFFF00, 0},
                                        {Address(169, 254, 3, 4), 0xFFFF0000, 0}};

bool IsAsked(const std::string& address, bool byThisHost = false) {
    return WhyNotAsked(address, kNetworks, byThisHost).empty();
}

TEST(AskedAddress, AHostOfTheInterfacesNetworks_IsAsked) {
    EXPECT_TRUE(IsAsked("10.99.0.1"));
    EXPECT_TRUE(IsAsked("10.99.0.254"));
    EXPECT_TRUE(IsAsked("169.254.200.1"));
}

TEST(AskedAddress, WhatIsElsewhere_IsNot) {
    EXPECT_FALSE(IsAsked("10.99.1.1"));
    EXPECT_FALSE(IsAsked("192.0.2.1"));
    EXPECT_FALSE(IsAsked("192.0.2.1", true));
    EXPECT_FALSE(WhyNotAsked("10.99.0.1", {}, false).empty());
}

TEST(AskedAddress, WhatIsNoHost_IsNot) {
    for (const char* const address :
         {"", "laser.local", "fe80::1", "0.0.0.0", "0.1.2.3", "224.0.0.1", "239.255.255.250",
          "240.0.0.1", "255.255.255.255", "10.99.0.0", "10.99.0.255", "169.254.255.255"}) {
        EXPECT_FALSE(IsAsked(address)) << address;
        EXPECT_FALSE(IsAsked(address, true)) << address;
    }
}

TEST(AskedAddress, Loopback_IsAskedOnlyForWhatThisHostAnnounces) {
    EXPECT_FALSE(IsAsked("127.0.0.1"));
    EXPECT_FALSE(IsAsked("127.8.9.10"));
    EXPECT_TRUE(IsAsked("127.0.0.1", true));
    EXPECT_FALSE(WhyNotAsked("127.0.0.1", {{Address(127, 0, 0, 1), 0xFF000000, 0}}, false).empty());
}

TEST(AskedAddress, ALinkOfTwo_HasBothEnds) {
    const std::vector<OwnNetwork> two{{Address(10, 0, 0, 2), 0xFFFFFFFE, 0}};
    EXPECT_TRUE(WhyNotAsked("10.0.0.3", two, false).empty());
    const std::vector<OwnNetwork> peer{{Address(10, 0, 0, 2), 0xFFFFFFFF, Address(10, 9, 9, 9)}};
    EXPECT_TRUE(WhyNotAsked("10.9.9.9", peer, false).empty());
    EXPECT_FALSE(WhyNotAsked("10.9.9.8", peer, false).empty());
}

}  // namespace
}  // namespace Driverless
