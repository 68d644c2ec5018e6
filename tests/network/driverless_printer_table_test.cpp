#include <gtest/gtest.h>

#include "printer_table.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{2000};
const std::string kUuid = "7e21a7d4-0000-4000-8000-0000000000ab";
const std::string kOtherUuid = "7e21a7d4-0000-4000-8000-0000000000cd";

class PrinterTableTest : public testing::Test {
protected:
    static ServiceId Id(ServiceKind kind, const std::string& name = "Laser", int interface = 2) {
        return {name, "local", kind, interface};
    }

    static Service WithUuid(const std::string& uuid, const std::string& host = "laser.local") {
        Service service{host, "192.0.2.7", 631, {}};
        if (!uuid.empty()) {
            service.txt["uuid"] = uuid;
        }
        return service;
    }

    void Resolve(const ServiceId& id, const std::string& uuid = kUuid,
                 const std::string& host = "laser.local") {
        table.Announced(id);
        table.Resolved(id, WithUuid(uuid, host), now);
    }

    PrinterTable::Work After(milliseconds time) {
        now += time;
        return table.Advance(now);
    }

    PrinterTable::Work Now() { return After(milliseconds(0)); }

    static PrinterAttributes Attributes(const std::string& uuid = kUuid) {
        PrinterAttributes attributes;
        attributes.uuid = "urn:uuid:" + uuid;
        return attributes;
    }

    PrinterTable table{kPatience};
    PrinterTable::Time now{};
};

TEST_F(PrinterTableTest, Ipp_IsAskedAtOnceAndReportedWhenItAnswered) {
    Resolve(Id(ServiceKind::Ipp));
    const auto work = Now();
    ASSERT_EQ(work.queries.size(), 1u);
    EXPECT_TRUE(work.reports.empty());
    EXPECT_EQ(work.queries[0].deadline, now + kPatience);
    table.Answered(work.queries[0].id, Attributes());
    const auto done = Now();
    ASSERT_EQ(done.reports.size(), 1u);
    EXPECT_EQ(done.reports[0].serialNumber, kUuid);
    EXPECT_TRUE(Now().reports.empty()) << "once";
}

TEST_F(PrinterTableTest, ThePrintersOtherServices_AreNotReportedAgain) {
    Resolve(Id(ServiceKind::Ipp));
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
    Resolve(Id(ServiceKind::Ipp, "Laser", 3));
    Resolve(Id(ServiceKind::Ipps));
    Resolve(Id(ServiceKind::PdlDatastream), "");
    Resolve(Id(ServiceKind::Ipp, "Another name"));
    const auto work = After(milliseconds(10000));
    EXPECT_TRUE(work.queries.empty());
    EXPECT_TRUE(work.reports.empty());
}

TEST_F(PrinterTableTest, PrintersOfOneName_AreTwoWhenTheirUuidsDiffer) {
    Resolve(Id(ServiceKind::Ipp), kUuid);
    Resolve(Id(ServiceKind::Ipp, "Laser", 3), kOtherUuid);
    EXPECT_EQ(Now().queries.size(), 2u);
}

TEST_F(PrinterTableTest, PrintersWithoutUuid_AreTwoOnTwoHosts) {
    Resolve(Id(ServiceKind::Ipp), "", "a.local");
    Resolve(Id(ServiceKind::Ipp, "Laser", 3), "", "b.local");
    EXPECT_EQ(Now().queries.size(), 2u);
}

TEST_F(PrinterTableTest, PrintersThatTurnOutToBeOne_AreReportedOnce) {
    Resolve(Id(ServiceKind::Ipp, "Laser"), "");
    Resolve(Id(ServiceKind::Ipp, "Laser on the left"), "");
    const auto work = Now();
    ASSERT_EQ(work.queries.size(), 2u);
    table.Answered(work.queries[0].id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
    table.Answered(work.queries[1].id, Attributes());
    EXPECT_TRUE(Now().reports.empty());
    table.Gone(Id(ServiceKind::Ipp, "Laser"));
    EXPECT_FALSE(table.IsEmpty());
    table.Gone(Id(ServiceKind::Ipp, "Laser on the left"));
    EXPECT_TRUE(table.IsEmpty());
}

TEST_F(PrinterTableTest, PrintersThatTurnOutToBeOne_KeepWhatOneOfThemAnswered) {
    Resolve(Id(ServiceKind::PdlDatastream, "Raw port"));
    Resolve(Id(ServiceKind::Ipps, "Another name"), "", "other.local");
    const auto asking = After(kPatienceForPlainIpp);
    ASSERT_EQ(asking.queries.size(), 1u);
    PrinterAttributes attributes = Attributes();
    attributes.serialNumber = "SN7";
    table.Answered(asking.queries[0].id, attributes);
    const auto work = Now();
    ASSERT_EQ(work.reports.size(), 1u);
    EXPECT_EQ(work.reports[0].serialNumber, "SN7");
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty());
}

TEST_F(PrinterTableTest, NoAnswer_IsReportedFromTheAnnouncementAtTheDeadline) {
    Resolve(Id(ServiceKind::Ipp));
    const auto query = Now().queries.at(0).id;
    const auto before = After(kPatience - milliseconds(1));
    EXPECT_TRUE(before.reports.empty());
    EXPECT_EQ(before.next, now + milliseconds(1));
    const auto work = After(milliseconds(1));
    EXPECT_EQ(work.reports.size(), 1u);
    EXPECT_EQ(work.overdue, std::vector{query});
    table.Answered(query, Attributes());
    EXPECT_TRUE(Now().reports.empty()) << "too late";
}

TEST_F(PrinterTableTest, IppThatFails_IsFollowedByIppsWithinTheSameDeadline) {
    Resolve(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipps));
    const auto first = Now();
    ASSERT_EQ(first.queries.size(), 1u);
    EXPECT_EQ(first.queries[0].printer.kind, ServiceKind::Ipp);
    now += milliseconds(100);
    table.Answered(first.queries[0].id, std::nullopt);
    const auto second = Now();
    ASSERT_EQ(second.queries.size(), 1u);
    EXPECT_EQ(second.queries[0].printer.kind, ServiceKind::Ipps);
    EXPECT_EQ(second.queries[0].deadline, first.queries[0].deadline);
    table.Answered(second.queries[0].id, Attributes());
    EXPECT_EQ(Now().reports.at(0).kind, ServiceKind::Ipps);
}

TEST_F(PrinterTableTest, IppThatFails_WaitsForIppsThatIsAnnounced) {
    table.Announced(Id(ServiceKind::Ipps));
    Resolve(Id(ServiceKind::Ipp));
    table.Answered(Now().queries.at(0).id, std::nullopt);
    const auto waiting = Now();
    EXPECT_TRUE(waiting.reports.empty());
    EXPECT_EQ(waiting.next, now + kPatience);
    now += milliseconds(500);
    Resolve(Id(ServiceKind::Ipps));
    EXPECT_EQ(Now().queries.at(0).printer.kind, ServiceKind::Ipps);
}

TEST_F(PrinterTableTest, Ipps_WaitsALittleForPlainIpp) {
    Resolve(Id(ServiceKind::Ipps));
    const auto work = Now();
    EXPECT_TRUE(work.queries.empty());
    EXPECT_EQ(work.next, now + kPatienceForPlainIpp);
    EXPECT_EQ(After(kPatienceForPlainIpp).queries.size(), 1u);
}

TEST_F(PrinterTableTest, Ipps_WaitsLongerForPlainIppThatIsAnnounced) {
    table.Announced(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipps));
    EXPECT_TRUE(After(kPatienceForPlainIpp).queries.empty());
    Resolve(Id(ServiceKind::Ipp));
    EXPECT_EQ(Now().queries.at(0).printer.kind, ServiceKind::Ipp);
}

TEST_F(PrinterTableTest, APrinterWithoutIpp_IsReportedOnceItIsClearThatIppDoesNotCome) {
    Resolve(Id(ServiceKind::PdlDatastream));
    EXPECT_TRUE(After(kPatienceForIpp - milliseconds(1)).reports.empty());
    const auto work = After(milliseconds(1));
    EXPECT_TRUE(work.queries.empty());
    ASSERT_EQ(work.reports.size(), 1u);
    EXPECT_EQ(work.reports[0].kind, ServiceKind::PdlDatastream);
}

TEST_F(PrinterTableTest, APrinterThatGoesAndComesBack_IsReportedAgain) {
    Resolve(Id(ServiceKind::Ipp));
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
    table.Gone(Id(ServiceKind::Ipp));
    EXPECT_TRUE(table.IsEmpty());
    Resolve(Id(ServiceKind::Ipp));
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
}

TEST_F(PrinterTableTest, APrinterThatLosesOneOfItsServices_IsStillThere) {
    Resolve(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipps));
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
    table.Gone(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipp));
    EXPECT_TRUE(Now().queries.empty());
}

TEST_F(PrinterTableTest, APrinterThatGoesWhileItIsAsked_IsNotReported) {
    Resolve(Id(ServiceKind::Ipp));
    const auto query = Now().queries.at(0).id;
    table.Gone(Id(ServiceKind::Ipp));
    table.Answered(query, Attributes());
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty());
}

TEST_F(PrinterTableTest, AllGone_ForgetsEverything) {
    Resolve(Id(ServiceKind::Ipp));
    table.Announced(Id(ServiceKind::Ipps));
    table.AllGone();
    EXPECT_TRUE(table.IsEmpty());
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty());
}

TEST_F(PrinterTableTest, WhatIsUnknown_IsIgnored) {
    table.Gone(Id(ServiceKind::Ipp));
    table.Answered(77, Attributes());
    EXPECT_TRUE(Now().reports.empty());
}

}  // namespace
}  // namespace Driverless
