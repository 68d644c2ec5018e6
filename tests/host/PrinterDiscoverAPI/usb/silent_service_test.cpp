// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/linux/silent_service.h"

#include <gtest/gtest.h>

namespace PrinterDiscoverAPI {

namespace {

using std::chrono::milliseconds;
using Clock = SilentService::Clock;

const Clock::time_point kStart{};
constexpr milliseconds kPatience = SilentService::kPatience;

UsbEvent Event(const std::string& path) {
    return {UsbEvent::Kind::added, {path, path, L"VID_0001&PID_0001", 1}};
}

// The path of the next overdue event; empty when there is none.
std::string Overdue(SilentService& service, Clock::time_point now) {
    const auto event = service.TakeOverdue(now);
    return event ? event->printer.path : "";
}

TEST(SilentService, IsNotSilentWhenItPassesEventsOnInTime) {
    SilentService service;
    service.ToldByKernel(1, Event("a"), kStart);
    EXPECT_EQ(Overdue(service, kStart + kPatience - milliseconds(1)), "");
    EXPECT_TRUE(service.ToldByService(1));
    EXPECT_EQ(Overdue(service, kStart + 2 * kPatience), "");
    EXPECT_FALSE(service.IsSilent());
    EXPECT_EQ(service.Remembered(), 0U);
}

TEST(SilentService, MayTellBeforeTheKernelIsHeard) {
    SilentService service;
    EXPECT_TRUE(service.ToldByService(1));
    service.ToldByKernel(1, Event("a"), kStart);
    EXPECT_EQ(Overdue(service, kStart + 2 * kPatience), "");
    EXPECT_EQ(service.Remembered(), 0U);
}

TEST(SilentService, LeavesWhatItDoesNotPassOnToTheKernelInOrder) {
    SilentService service;
    service.ToldByKernel(1, Event("a"), kStart);
    service.ToldByKernel(2, Event("b"), kStart + milliseconds(1));
    EXPECT_EQ(service.NextOverdue(), kStart + kPatience);
    EXPECT_EQ(Overdue(service, kStart + kPatience), "a");
    EXPECT_TRUE(service.IsSilent());
    EXPECT_EQ(Overdue(service, kStart + kPatience), "");
    EXPECT_EQ(Overdue(service, kStart + kPatience + milliseconds(1)), "b");
    EXPECT_EQ(service.NextOverdue(), std::nullopt);
}

TEST(SilentService, IsNotWaitedForAgainUntilItSpeaks) {
    SilentService service;
    service.ToldByKernel(1, Event("a"), kStart);
    const auto later = kStart + kPatience;
    EXPECT_EQ(Overdue(service, later), "a");
    service.ToldByKernel(2, Event("b"), later);
    EXPECT_EQ(Overdue(service, later), "b");
    EXPECT_TRUE(service.ToldByService(3));
    EXPECT_FALSE(service.IsSilent());
    service.ToldByKernel(4, Event("d"), later);
    EXPECT_EQ(Overdue(service, later), "");
    EXPECT_EQ(Overdue(service, later + kPatience), "d");
}

TEST(SilentService, ThatSpeaksAgainRepeatsNothing) {
    SilentService service;
    service.ToldByKernel(1, Event("a"), kStart);
    service.ToldByKernel(2, Event("b"), kStart);
    EXPECT_EQ(Overdue(service, kStart + kPatience), "a");
    EXPECT_FALSE(service.ToldByService(1));
    EXPECT_FALSE(service.IsSilent());
    EXPECT_TRUE(service.ToldByService(2));
    EXPECT_EQ(service.Remembered(), 0U);
}

TEST(SilentService, RemembersOnlySoMuch) {
    SilentService service;
    for (std::uint64_t number = 0; number < 5000; ++number) {
        service.ToldByKernel(number, Event("a"), kStart);
        while (service.TakeOverdue(kStart)) {
        }
        service.ToldByService(1000000 + number);
    }
    EXPECT_LT(service.Remembered(), 4000U);
}

}  // namespace

}  // namespace PrinterDiscoverAPI
