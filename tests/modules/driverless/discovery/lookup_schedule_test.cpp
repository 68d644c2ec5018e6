// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include "modules/driverless/discovery/lookup_schedule.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;
using Ids = std::vector<ServiceId>;

class LookupScheduleTest : public testing::Test {
protected:
    static ServiceId Id(ServiceKind kind, const std::string& name = "Laser", int interface = 2) {
        return {name, "local", kind, interface};
    }

    static ServiceId Junk(int number) {
        return Id(ServiceKind::Ipp, "Junk " + std::to_string(number));
    }

    void Announce(const ServiceId& id) { schedule.Announced(id, now); }

    LookupSchedule::Work After(milliseconds time) {
        now += time;
        return schedule.Advance(now);
    }

    Ids BegunAfter(milliseconds time) { return After(time).begin; }
    Ids BegunNow() { return BegunAfter(milliseconds(0)); }

    // How many look-ups are under way at most while `Advance` is called when it says, for so long.
    std::size_t MostUnderWay(milliseconds time) {
        std::size_t underWay = 0;
        std::size_t most = 0;
        const auto end = now + time;
        while (now < end) {
            const auto work = schedule.Advance(now);
            underWay += work.begin.size();
            underWay -= work.end.size();
            most = std::max(most, underWay);
            now = std::min(end, work.next.value_or(end));
        }
        return most;
    }

    bool IsBegunWithin(milliseconds time, const ServiceId& id) {
        const auto end = now + time;
        bool begun = false;
        for (; !begun && now < end; now += milliseconds(10)) {
            const Ids ids = BegunNow();
            begun = std::find(ids.begin(), ids.end(), id) != ids.end();
        }
        return begun;
    }

    LookupSchedule schedule;
    LookupSchedule::Time now{};
};

TEST_F(LookupScheduleTest, PlainIpp_IsLookedUpAtOnce) {
    Announce(Id(ServiceKind::Ipp));
    EXPECT_EQ(BegunNow(), Ids{Id(ServiceKind::Ipp)});
    EXPECT_TRUE(BegunAfter(milliseconds(10000)).empty()) << "once";
}

TEST_F(LookupScheduleTest, AServiceWithoutPlainIpp_IsLookedUpInAMoment) {
    Announce(Id(ServiceKind::Ipps));
    const auto work = After(milliseconds(0));
    EXPECT_TRUE(work.begin.empty());
    EXPECT_EQ(work.next, now + kDelayWithoutIpp);
    EXPECT_EQ(BegunAfter(kDelayWithoutIpp), Ids{Id(ServiceKind::Ipps)});
}

TEST_F(LookupScheduleTest, AServiceBesidePlainIpp_IsLookedUpLater) {
    Announce(Id(ServiceKind::Ipps));
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Lpd));
    EXPECT_EQ(BegunNow(), Ids{Id(ServiceKind::Ipp)});
    EXPECT_TRUE(BegunAfter(kDelayWithIpp - milliseconds(1)).empty());
    EXPECT_EQ(BegunAfter(milliseconds(1)).size(), 2u);
}

TEST_F(LookupScheduleTest, OfAPrinterThatAnswered_TheRestIsLookedUpLate) {
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Ipps));
    Announce(Id(ServiceKind::Ipps, "Other"));
    Announce(Id(ServiceKind::Ipps, "Laser", 3));
    BegunNow();
    schedule.Found(Id(ServiceKind::Ipp), now);
    schedule.Answered(Id(ServiceKind::Ipp));
    const Ids begun = BegunAfter(kDelayWithIpp);
    EXPECT_EQ((std::set<ServiceId>{begun.begin(), begun.end()}),
              (std::set{Id(ServiceKind::Ipps, "Laser", 3), Id(ServiceKind::Ipps, "Other")}))
        << "one on another interface is another one";
    const auto work = After(kDelayWhenAnswered - kDelayWithIpp - milliseconds(1));
    EXPECT_TRUE(work.begin.empty());
    EXPECT_EQ(work.next, now + milliseconds(1));
    EXPECT_EQ(BegunAfter(milliseconds(1)), Ids{Id(ServiceKind::Ipps)});
    schedule.Found(Id(ServiceKind::Ipps), now);
    EXPECT_TRUE(BegunAfter(milliseconds(10000)).empty()) << "once";
}

TEST_F(LookupScheduleTest, OfAPrinterThatAnswersWhileTheRestWaits_TheRestIsLookedUpLate) {
    for (int number = 0; number < 300; ++number) {
        Announce(Id(ServiceKind::Ipps, "Secure " + std::to_string(number)));
    }
    const ServiceId last = Id(ServiceKind::Ipps, "Secure 150");
    const Ids begun = BegunAfter(kDelayWithoutIpp);
    ASSERT_EQ(std::find(begun.begin(), begun.end(), last), begun.end());
    const ServiceId plain = Id(ServiceKind::Ipp, "Secure 150");
    Announce(plain);
    schedule.Answered(plain);
    EXPECT_FALSE(IsBegunWithin(kDelayWhenAnswered - kDelayWithoutIpp, last));
    EXPECT_TRUE(IsBegunWithin(milliseconds(1000), last));
}

TEST_F(LookupScheduleTest, OfAPrinterThatAnswered_TheRestComesAfterThoseOfOthers) {
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Ipps));
    BegunNow();
    schedule.Answered(Id(ServiceKind::Ipp));
    now += kDelayWhenAnswered - kDelayWithoutIpp;
    for (int number = 0; number < 40; ++number) {
        Announce(Id(ServiceKind::Ipps, "Other " + std::to_string(number)));
    }
    Ids begun = BegunAfter(kDelayWithoutIpp);
    for (int i = 0; i < 10; ++i) {
        const Ids more = BegunAfter(milliseconds(40));
        begun.insert(begun.end(), more.begin(), more.end());
    }
    ASSERT_EQ(begun.size(), 41u);
    EXPECT_EQ(begun.back(), Id(ServiceKind::Ipps));
}

TEST_F(LookupScheduleTest, PlainIppThatComesAndGoes_DoesNotKeepTheRestWaiting) {
    Announce(Id(ServiceKind::Ipps));
    bool begun = false;
    for (int i = 0; i < 10 && !begun; ++i) {
        Announce(Id(ServiceKind::Ipp));
        schedule.Answered(Id(ServiceKind::Ipp));
        begun = IsBegunWithin(milliseconds(90), Id(ServiceKind::Ipps));
        schedule.Gone(Id(ServiceKind::Ipp), now);
        begun = begun || IsBegunWithin(milliseconds(90), Id(ServiceKind::Ipps));
    }
    for (int i = 0; i < 10 && !begun; ++i) {
        Announce(Id(ServiceKind::Ipp));
        begun = IsBegunWithin(milliseconds(900), Id(ServiceKind::Ipps));
        schedule.Gone(Id(ServiceKind::Ipp), now);
    }
    EXPECT_TRUE(begun);
    EXPECT_LE(now, LookupSchedule::Time{} + kDelayWhenAnswered + milliseconds(2000));
}

TEST_F(LookupScheduleTest, WhenTheServiceThatAnsweredGoes_TheOthersAreLookedUp) {
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Ipps));
    BegunNow();
    schedule.Found(Id(ServiceKind::Ipp), now);
    schedule.Answered(Id(ServiceKind::Ipp));
    BegunAfter(kDelayWithIpp);
    schedule.Gone(Id(ServiceKind::Ipp), now);
    EXPECT_EQ(BegunAfter(kDelayWithoutIpp), Ids{Id(ServiceKind::Ipps)});
}

TEST_F(LookupScheduleTest, WhenTheServiceThatAnsweredGoes_OnesHandedBackStillPause) {
    const ServiceId secure = Id(ServiceKind::Ipps, "Secure 0");
    Announce(secure);
    for (int number = 1; number < 300; ++number) {
        Announce(Id(ServiceKind::Ipps, "Secure " + std::to_string(number)));
    }
    ASSERT_TRUE(IsBegunWithin(milliseconds(200), secure));
    bool handedBack = false;
    while (!handedBack) {
        const Ids ended = After(milliseconds(10)).end;
        handedBack = std::find(ended.begin(), ended.end(), secure) != ended.end();
        ASSERT_LT(now, LookupSchedule::Time{} + milliseconds(10000));
    }
    const ServiceId plain = Id(ServiceKind::Ipp, "Secure 0");
    Announce(plain);
    schedule.Answered(plain);
    schedule.Gone(plain, now);
    for (int number = 1; number < 300; ++number) {
        schedule.Gone(Id(ServiceKind::Ipps, "Secure " + std::to_string(number)), now);
    }
    EXPECT_FALSE(IsBegunWithin(kDelayAfterSlice - milliseconds(10), secure));
    EXPECT_TRUE(IsBegunWithin(milliseconds(1000), secure));
}

TEST_F(LookupScheduleTest, WhatIsGone_IsNotLookedUp) {
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Ipps));
    schedule.Gone(Id(ServiceKind::Ipp), now);
    schedule.Gone(Id(ServiceKind::Ipps), now);
    EXPECT_TRUE(BegunAfter(milliseconds(10000)).empty());
    Announce(Id(ServiceKind::Ipp));
    EXPECT_EQ(BegunNow().size(), 1u) << "it is back";
}

TEST_F(LookupScheduleTest, ManyThatAreNeverFound_LeaveAvahiRoom) {
    for (int number = 0; number < 2000; ++number) {
        Announce(Junk(number));
        Announce(Id(ServiceKind::Ipps, "Secure junk " + std::to_string(number)));
    }
    EXPECT_LT(MostUnderWay(milliseconds(5000)), 800u) << "of 1,024 objects";
}

TEST_F(LookupScheduleTest, ManyThatAreFoundInOrder_AreNotAskedForAllAtOnce) {
    for (int number = 0; number < 400; ++number) {
        Announce(Junk(number));
    }
    std::deque<ServiceId> underWay;
    std::size_t most = 0;
    std::size_t found = 0;
    for (; found < 400 && now < LookupSchedule::Time{} + milliseconds(3000); ++found) {
        const Ids begun = BegunNow();
        underWay.insert(underWay.end(), begun.begin(), begun.end());
        most = std::max(most, underWay.size());
        ASSERT_FALSE(underWay.empty());
        now += milliseconds(5);  // each waits for those before it: much longer than 40 ms
        schedule.Found(underWay.front(), now);
        underWay.pop_front();
    }
    EXPECT_EQ(found, 400u);
    EXPECT_LE(most, 32u);
}

TEST_F(LookupScheduleTest, OneThatComesLate_IsLookedUpSoonAmongManyThatAreNeverFound) {
    for (int number = 0; number < 2000; ++number) {
        Announce(Junk(number));
    }
    for (const milliseconds time : {milliseconds(0), milliseconds(4000)}) {
        MostUnderWay(time);
        const ServiceId late = Id(ServiceKind::Ipp, "Late " + std::to_string(time.count()));
        Announce(late);
        EXPECT_TRUE(IsBegunWithin(milliseconds(400), late)) << time.count();
    }
}

TEST_F(LookupScheduleTest, AnotherInterface_IsNotDelayed) {
    for (int number = 0; number < 2000; ++number) {
        Announce(Junk(number));
    }
    MostUnderWay(milliseconds(200));
    Announce(Id(ServiceKind::Ipp, "Laser", 3));
    const Ids begun = BegunNow();
    EXPECT_NE(std::find(begun.begin(), begun.end(), Id(ServiceKind::Ipp, "Laser", 3)), begun.end());
}

TEST_F(LookupScheduleTest, OneThatIsNotFound_IsKeptWhileThereIsRoom) {
    Announce(Junk(1));
    BegunNow();
    Announce(Junk(2));
    EXPECT_TRUE(After(milliseconds(60000)).end.empty());
}

TEST_F(LookupScheduleTest, OneThatWasHandedBack_ComesAgain) {
    for (int number = 0; number < 300; ++number) {
        Announce(Junk(number));
    }
    int begun = 0;
    for (int i = 0; i < 1000; ++i) {
        const Ids ids = BegunAfter(milliseconds(10));
        begun += static_cast<int>(std::count(ids.begin(), ids.end(), Junk(0)));
    }
    EXPECT_GE(begun, 2);
    EXPECT_LE(begun, 8) << "ever more rarely";
}

TEST_F(LookupScheduleTest, WhenAvahiRefuses_NothingIsBegunForAWhile) {
    Announce(Junk(1));
    Announce(Junk(2));
    ASSERT_EQ(BegunNow().size(), 2u);
    schedule.Refused(Junk(2), now);
    Announce(Junk(3));
    const auto waiting = After(milliseconds(0));
    EXPECT_TRUE(waiting.begin.empty());
    EXPECT_EQ(waiting.next, now + kDelayAfterRefusal);
    EXPECT_EQ(BegunAfter(kDelayAfterRefusal).size(), 2u);
}

TEST_F(LookupScheduleTest, WhenAvahiRefuses_OneThatEndsMakesRoom) {
    Announce(Junk(1));
    Announce(Junk(2));
    BegunNow();
    schedule.Refused(Junk(2), now);
    Announce(Junk(3));
    schedule.Found(Junk(1), now);
    EXPECT_EQ(BegunNow(), Ids{Junk(3)});
}

TEST_F(LookupScheduleTest, WhenAvahiRefuses_OneThatLastsIsHandedBack) {
    Announce(Junk(1));
    Announce(Junk(2));
    BegunNow();
    now += kSliceOfLookup;
    Announce(Junk(3));
    schedule.Refused(Junk(2), now);
    const auto work = After(milliseconds(0));
    EXPECT_EQ(work.end, Ids{Junk(1)});
    EXPECT_EQ(work.begin, Ids{Junk(3)});
}

TEST_F(LookupScheduleTest, ARefusal_IsTheNextToLookAtOnceItHappened) {
    Announce(Junk(1));
    const auto work = After(milliseconds(0));
    EXPECT_EQ(work.begin, Ids{Junk(1)});
    schedule.Refused(Junk(1), now);
    EXPECT_EQ(schedule.Next(now), now + kDelayAfterRefusal);
    // What is due before stays so.
    Announce(Id(ServiceKind::Ipps));
    EXPECT_EQ(schedule.Next(now), now + kDelayWithoutIpp);
}

TEST_F(LookupScheduleTest, ARefusalOfWhatIsGone_IsLookedAtOnce) {
    Announce(Junk(1));
    EXPECT_EQ(BegunNow(), Ids{Junk(1)});
    schedule.Refused(Junk(1), now);
    schedule.Gone(Junk(1), now);
    EXPECT_EQ(schedule.Next(now), now + kDelayAfterRefusal);
    EXPECT_EQ(After(kDelayAfterRefusal).next, std::nullopt);
}

TEST_F(LookupScheduleTest, Clear_ForgetsEverything) {
    Announce(Id(ServiceKind::Ipp));
    Announce(Id(ServiceKind::Ipps));
    schedule.Clear();
    EXPECT_TRUE(BegunAfter(milliseconds(10000)).empty());
    Announce(Id(ServiceKind::Ipp));
    EXPECT_EQ(BegunNow().size(), 1u);
}

}  // namespace
}  // namespace Driverless
