// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "modules/driverless/discovery/avahi_hang.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;
using Finding = AvahiHang::Finding;

class AvahiHangTest : public testing::Test {
protected:
    // What is found at last, of an Avahi that is waited for since then.
    Finding After(milliseconds time, std::optional<AvahiHang::Time> since) {
        Finding finding = Finding::None;
        for (const auto end = now + time; now < end && finding == Finding::None;) {
            now += kLookForHangEvery;
            finding = hang.Look(since, now);
        }
        return finding;
    }

    AvahiHang hang;
    AvahiHang::Time now = AvahiHang::Time{} + milliseconds(1000);
};

TEST_F(AvahiHangTest, OneThatIsNotWaitedFor_DoesNotHang) {
    EXPECT_EQ(After(milliseconds(60000), std::nullopt), Finding::None);
}

TEST_F(AvahiHangTest, OneThatDoesNotAnswer_IsToldOnceAndThenNotWaitedForAnyLonger) {
    const auto begin = now;
    EXPECT_EQ(After(milliseconds(60000), begin), Finding::Hangs);
    EXPECT_LE(now, begin + kSilenceToTell + 2 * kLookForHangEvery);
    EXPECT_EQ(After(milliseconds(60000), begin), Finding::IsOver);
    EXPECT_LE(now, begin + kSilenceToEnd + 2 * kLookForHangEvery);
}

TEST_F(AvahiHangTest, OneThatAnswersAfterThat_RecoversOnce) {
    EXPECT_FALSE(hang.IsTold());
    EXPECT_EQ(After(milliseconds(60000), now), Finding::Hangs);
    EXPECT_TRUE(hang.IsTold());
    EXPECT_EQ(After(milliseconds(60000), std::nullopt), Finding::Recovers);
    EXPECT_FALSE(hang.IsTold());
    EXPECT_EQ(After(milliseconds(60000), std::nullopt), Finding::None);
    EXPECT_EQ(After(milliseconds(60000), now), Finding::Hangs) << "again";
}

TEST_F(AvahiHangTest, OneThatIsWaitedForAnew_HasRecovered) {
    const auto begin = now;
    EXPECT_EQ(After(milliseconds(60000), begin), Finding::Hangs);
    EXPECT_EQ(After(milliseconds(60000), begin + milliseconds(1)), Finding::Recovers);
}

TEST_F(AvahiHangTest, OneThatIsAlwaysBusyButAnswers_DoesNotHang) {
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(After(kSilenceToTell - kLookForHangEvery, now), Finding::None);
    }
}

TEST_F(AvahiHangTest, AProcessThatWasStopped_DidNotWait) {
    const auto since = now;
    EXPECT_EQ(hang.Look(since, now), Finding::None);
    now += milliseconds(60000);
    EXPECT_EQ(hang.Look(since, now), Finding::None);
    EXPECT_EQ(hang.Look(std::nullopt, now), Finding::None);
}

}  // namespace
}  // namespace Driverless
