// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "modules/driverless/discovery/printer_table.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{2000};
const std::string kUuid = "7e21a7d4-0000-4000-8000-0000000000ab";
const std::string kOtherUuid = "7e21a7d4-0000-4000-8000-0000000000cd";

using Texts = std::vector<std::string>;

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

    // A place of a printer: each has a host and an address of its own.
    static Service Place(int number, const std::string& uuid = kUuid, std::uint16_t port = 631) {
        Service service = WithUuid(uuid, "host-" + std::to_string(number) + ".local");
        service.address = "192.0.2." + std::to_string(number);
        service.port = port;
        return service;
    }

    static ServiceId PlaceId(int number, ServiceKind kind = ServiceKind::Ipp) {
        return Id(kind, "Laser " + std::to_string(number));
    }

    void ResolvePlace(int number, const std::string& uuid = kUuid) {
        table.Announced(PlaceId(number));
        table.Resolved(PlaceId(number), Place(number, uuid), now);
    }

    static Texts AddressesOf(const PrinterTable::Work& work) {
        Texts addresses;
        for (const Printer& printer : work.reports) {
            addresses.push_back(printer.address);
        }
        return addresses;
    }

    PrinterTable::Work After(milliseconds time) {
        now += time;
        return table.Advance(now);
    }

    PrinterTable::Work Now() { return After(milliseconds(0)); }

    void ResolveTwoOfWhichTheFirstRefuses() {
        ResolvePlace(1);
        ResolvePlace(2);
        const auto asking = Now();
        table.Refused(asking.queries.at(0).id);
        table.Answered(asking.queries.at(1).id, Attributes());
        EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
    }

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

TEST_F(PrinterTableTest,
       ThePrintersOtherServices_AreItsOwnAlsoWhenItAnnouncesAnotherUuidThanItSays) {
    Resolve(Id(ServiceKind::Ipp));
    table.Answered(Now().queries.at(0).id, Attributes(kOtherUuid));
    EXPECT_EQ(Now().reports.size(), 1u);
    Resolve(Id(ServiceKind::PdlDatastream));
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty());
}

TEST_F(PrinterTableTest, AnotherHostsServiceOfAPrintersName_IsAPrinterOfItsOwn) {
    table.Announced(PlaceId(1));
    table.Announced(Id(ServiceKind::Ipps, "Laser 1"));
    table.Resolved(PlaceId(1), Place(1, ""), now);
    table.Answered(Now().queries.at(0).id, PrinterAttributes{});
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.1"});
    table.Resolved(Id(ServiceKind::Ipps, "Laser 1"), Place(2, ""), now);
    const auto asking = After(kPatienceForPlainIpp);
    ASSERT_EQ(asking.queries.size(), 1u);
    table.Answered(asking.queries[0].id, PrinterAttributes{});
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
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

TEST_F(PrinterTableTest, APlaceThatAnswers_IsReportedWhenTheFirstOneRefused) {
    ResolvePlace(1);
    table.Answered(Now().queries.at(0).id, std::nullopt);
    EXPECT_TRUE(After(milliseconds(50)).reports.empty()) << "another place may come";
    ResolvePlace(2);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 1u);
    table.Answered(asking.queries[0].id, Attributes());
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "the place that refused";
}

TEST_F(PrinterTableTest, APlaceThatAnswers_IsReportedAfterThatOfAnotherWasReported) {
    ResolvePlace(1);
    table.Answered(Now().queries.at(0).id, std::nullopt);
    EXPECT_EQ(AddressesOf(After(kPatienceForIpp)), Texts{"192.0.2.1"});
    ResolvePlace(2);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 1u);
    table.Answered(asking.queries[0].id, Attributes());
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
}

TEST_F(PrinterTableTest, APlaceThatHangs_DelaysThoseAfterItALittle) {
    ResolvePlace(1);
    ResolvePlace(2);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 2u) << "both at once";
    table.Answered(asking.queries[1].id, Attributes());
    const auto waiting = Now();
    EXPECT_TRUE(waiting.reports.empty());
    EXPECT_EQ(waiting.next, now + kPatienceForEarlierPlace);
    EXPECT_EQ(AddressesOf(After(kPatienceForEarlierPlace)), Texts{"192.0.2.2"});
    EXPECT_TRUE(After(kPatience).reports.empty()) << "the place that hangs";
}

TEST_F(PrinterTableTest, PlacesThatAnswerAlike_AreAllReportedTheEarlierFirst) {
    table.Announced(PlaceId(1));
    table.Announced(PlaceId(2));
    ResolvePlace(3);
    ResolvePlace(2);
    ResolvePlace(1);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 3u);
    for (const std::size_t i : {2U, 1U, 0U}) {
        EXPECT_EQ(asking.queries[i].printer.address, "192.0.2." + std::to_string(i + 1));
        EXPECT_TRUE(Now().reports.empty());
        table.Answered(asking.queries[i].id, Attributes());
    }
    EXPECT_EQ(AddressesOf(Now()), (Texts{"192.0.2.1", "192.0.2.2", "192.0.2.3"}));
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "each once";
}

TEST_F(PrinterTableTest, APlaceThatRefuses_DelaysThoseAfterItNoLonger) {
    ResolvePlace(1);
    ResolvePlace(2);
    const auto asking = Now();
    table.Answered(asking.queries.at(1).id, Attributes());
    EXPECT_TRUE(Now().reports.empty());
    table.Answered(asking.queries.at(0).id, std::nullopt);
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
}

TEST_F(PrinterTableTest, APlaceThatSaysItIsAnAnnouncedPrinter_IsAnotherRow) {
    ResolvePlace(1);
    ResolvePlace(2, "");
    const auto asking = Now();
    table.Answered(asking.queries.at(1).id, Attributes(kUuid));
    EXPECT_TRUE(Now().reports.empty());
    table.Answered(asking.queries.at(0).id, Attributes(kUuid));
    EXPECT_EQ(AddressesOf(Now()), (Texts{"192.0.2.1", "192.0.2.2"}));
}

TEST_F(PrinterTableTest, APlaceWithoutIpp_IsNotHiddenByOneThatAnswers) {
    table.Announced(PlaceId(1, ServiceKind::PdlDatastream));
    table.Resolved(PlaceId(1, ServiceKind::PdlDatastream), Place(1), now);
    ResolvePlace(2);
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
    EXPECT_EQ(AddressesOf(After(kPatienceForIpp)), Texts{"192.0.2.1"});
}

TEST_F(PrinterTableTest, APlaceBehindOneThatAnswered_IsReportedWhenThatIsGone) {
    ResolvePlace(1);
    ResolvePlace(2);
    const auto asking = Now();
    table.Answered(asking.queries.at(0).id, Attributes());
    table.Answered(asking.queries.at(1).id, std::nullopt);
    EXPECT_EQ(AddressesOf(After(kPatienceForIpp)), Texts{"192.0.2.1"});
    table.Gone(PlaceId(1));
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.2"});
}

TEST_F(PrinterTableTest, OneHostsPorts_AreAskedSideBySide) {
    ResolvePlace(1);
    table.Announced(Id(ServiceKind::Ipp, "Bait"));
    table.Resolved(Id(ServiceKind::Ipp, "Bait"), Place(1, kUuid, 9), now);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 2u);
    table.Answered(asking.queries[1].id, Attributes());
    const auto done = Now();
    EXPECT_EQ(done.reports.size(), 1u);
    EXPECT_EQ(done.overdue.size(), 1u) << "the other is not waited for";
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "one place";
}

TEST_F(PrinterTableTest, AServiceThatMoved_IsAskedAgain) {
    ResolvePlace(1);
    table.Answered(Now().queries.at(0).id, std::nullopt);
    EXPECT_EQ(After(kPatienceForIpp).reports.size(), 1u);
    table.Resolved(PlaceId(1), Place(7), now);
    const auto asking = Now();
    ASSERT_EQ(asking.queries.size(), 1u);
    EXPECT_EQ(asking.queries[0].printer.address, "192.0.2.7");
    table.Answered(asking.queries[0].id, Attributes());
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.7"});
}

TEST_F(PrinterTableTest, APrinterThatAnswered_StaysWhileAServiceIsAnnounced) {
    Resolve(Id(ServiceKind::Ipp));
    table.Announced(Id(ServiceKind::Ipps));
    table.Answered(Now().queries.at(0).id, Attributes());
    const auto work = Now();
    EXPECT_EQ(work.answered, std::vector{Id(ServiceKind::Ipp)});
    table.Gone(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipps));
    const auto later = After(milliseconds(10000));
    EXPECT_TRUE(later.queries.empty());
    EXPECT_TRUE(later.reports.empty());
    table.Gone(Id(ServiceKind::Ipps));
    EXPECT_TRUE(table.IsEmpty());
}

TEST_F(PrinterTableTest, APrinterThatAnswered_GoesWithTheLastAnnouncement) {
    Resolve(Id(ServiceKind::Ipp));
    table.Announced(Id(ServiceKind::Ipps));
    table.Answered(Now().queries.at(0).id, Attributes());
    EXPECT_EQ(Now().reports.size(), 1u);
    table.Gone(Id(ServiceKind::Ipp));
    table.Gone(Id(ServiceKind::Ipps));
    EXPECT_TRUE(table.IsEmpty());
    Resolve(Id(ServiceKind::Ipp));
    EXPECT_EQ(Now().queries.size(), 1u) << "it is back";
}

TEST_F(PrinterTableTest, TimeRunsFromWhenAPrinterIsAsked) {
    for (int number = 1; number <= 200; ++number) {
        table.Resolved(PlaceId(number), Place(7, "", static_cast<std::uint16_t>(number)), now);
    }
    std::map<PrinterTable::QueryId, PrinterTable::Time> asked;
    auto work = Now();
    while (work.next && work.reports.empty()) {
        for (const auto& query : work.queries) {
            EXPECT_EQ(query.deadline, now + kPatience);
            asked.emplace(query.id, now);
        }
        now = *work.next;
        work = table.Advance(now);
    }
    EXPECT_EQ(asked.size(), 200u);
    EXPECT_EQ(now, PrinterTable::Time{} + kPatience) << "those that hang do not block the others";
}

TEST_F(PrinterTableTest, AHostThatHangs_TakesNoTurnFromAnother) {
    for (int number = 1; number <= 2000; ++number) {
        const auto id = Id(ServiceKind::Ipp, "Silent " + std::to_string(number));
        Service service = Place(66, "", static_cast<std::uint16_t>(number));
        table.Resolved(id, service, now);
    }
    for (int i = 0; i < 10; ++i) {
        After(kYouthOfQuestion);
    }
    ResolvePlace(1);
    const auto work = Now();
    ASSERT_FALSE(work.queries.empty());
    EXPECT_EQ(work.queries[0].printer.address, "192.0.2.1");
    table.Answered(work.queries[0].id, Attributes());
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.1"});
}

// A sanitizer's own books are not kept in proportion.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// What takes twice as many printers takes no more than about twice the time.
TEST_F(PrinterTableTest, ManyPrinters_TakeTimeInProportion) {
    const auto timeOf = [](int printers) {
        PrinterTable many{kPatience};
        const PrinterTable::Time then{};
        std::size_t reports = 0;
        const std::clock_t begin = std::clock();
        for (int number = 0; number < printers; ++number) {
            const std::string name = "Laser " + std::to_string(number);
            for (const auto kind : {ServiceKind::Ipp, ServiceKind::Ipps, ServiceKind::Lpd}) {
                many.Announced(Id(kind, name));
            }
            many.Advance(then);
        }
        for (int number = 0; number < printers; ++number) {
            const std::string name = "Laser " + std::to_string(number);
            const auto port = static_cast<std::uint16_t>(number + 1);
            for (const auto kind : {ServiceKind::Ipp, ServiceKind::Ipps, ServiceKind::Lpd}) {
                Service service = WithUuid("", name + ".local");
                service.port = port;
                many.Resolved(Id(kind, name), service, then);
                for (const auto& query : many.Advance(then).queries) {
                    many.Answered(query.id, PrinterAttributes{});
                }
                reports += many.Advance(then).reports.size();
            }
        }
        EXPECT_EQ(reports, static_cast<std::size_t>(printers));
        return std::clock() - begin;
    };
    timeOf(100);
    EXPECT_LT(timeOf(4000), 16 * timeOf(500)) << "8 in proportion, 64 when quadratic";
}

// Of many services, each announced, resolved, and at last gone; the first one answers.
double ProcessorTimeOf(int services, const std::function<Service(int)>& serviceOf) {
    PrinterTable table{kPatience};
    const PrinterTable::Time now{};
    const auto idOf = [](int number) {
        return ServiceId{"Laser " + std::to_string(number), "local", ServiceKind::Ipp, 2};
    };
    const std::clock_t begin = std::clock();
    for (int number = 0; number < services; ++number) {
        table.Announced(idOf(number));
        table.Resolved(idOf(number), serviceOf(number), now);
        for (const auto& query : table.Advance(now).queries) {
            if (number == 0) {
                table.Answered(query.id, PrinterAttributes{});
            }
        }
    }
    for (int number = 0; number < services; ++number) {
        table.Gone(idOf(number));
        table.Advance(now);
    }
    EXPECT_TRUE(table.IsEmpty());
    return static_cast<double>(std::clock() - begin);
}

void ExpectInProportion(const std::function<Service(int)>& serviceOf) {
    ProcessorTimeOf(100, serviceOf);
    EXPECT_LT(ProcessorTimeOf(8000, serviceOf), 10 * ProcessorTimeOf(2000, serviceOf))
        << "4 in proportion, 16 when quadratic";
}

TEST_F(PrinterTableTest, ManyPlacesOfOneUuid_TakeTimeInProportion) {
    ExpectInProportion([](int number) {
        Service service = WithUuid(kUuid, "host-" + std::to_string(number) + ".local");
        service.address =
            "10." + std::to_string(number / 250) + ".0." + std::to_string(number % 250);
        return service;
    });
}

TEST_F(PrinterTableTest, ManyPortsOfOnePlace_TakeTimeInProportion) {
    const auto portOf = [](int number, Service service) {
        service.port = static_cast<std::uint16_t>(number + 1);
        return service;
    };
    ExpectInProportion([&](int number) { return portOf(number, WithUuid(kUuid)); });
    // None of them answers.
    ExpectInProportion(
        [&](int number) { return portOf(number, WithUuid(number == 0 ? kOtherUuid : kUuid)); });
}

#endif

TEST_F(PrinterTableTest, AFloodOfPlaces_TakesNoChanceFromALateOne) {
    const int places = static_cast<int>(kMaxPlaces) + 50;
    std::size_t leftOut = 0;
    for (int number = 1; number <= places; ++number) {
        const ServiceId id = Id(ServiceKind::Ipp, "Silent " + std::to_string(number));
        Service service = WithUuid(kUuid, "silent-" + std::to_string(number) + ".local");
        service.address =
            "10.0." + std::to_string(number / 250) + "." + std::to_string(number % 250);
        table.Announced(id);
        table.Resolved(id, service, now);
        leftOut += After(milliseconds(2)).leftOut.size();
    }
    EXPECT_EQ(leftOut, 50u);
    ResolvePlace(1);
    const auto asking = After(kYouthOfQuestion);
    EXPECT_EQ(asking.leftOut.size(), 1u);
    ASSERT_FALSE(asking.queries.empty());
    table.Answered(asking.queries[0].id, Attributes());
    EXPECT_TRUE(Now().reports.empty());
    EXPECT_EQ(AddressesOf(After(kPatienceForEarlierPlace)), Texts{"192.0.2.1"});
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "those that hang";
}

TEST_F(PrinterTableTest, AFloodOfPlacesThatAnswer_LeavesTheFirstOneInPlace) {
    std::size_t reports = 0;
    for (int number = 1; number <= static_cast<int>(kMaxPlaces) + 10; ++number) {
        const ServiceId id = Id(ServiceKind::Ipp, "Laser " + std::to_string(number));
        Service service = WithUuid(kUuid, "laser-" + std::to_string(number) + ".local");
        service.port = static_cast<std::uint16_t>(number);
        table.Resolved(id, service, now);
        for (const auto& query : After(milliseconds(10)).queries) {
            table.Answered(query.id, Attributes());
        }
        reports += Now().reports.size();
    }
    EXPECT_EQ(reports, kMaxPlaces + 10) << "each is reported";
    table.Resolved(Id(ServiceKind::Ipps, "Laser 1"), WithUuid(kUuid, "laser-1.local"), now);
    const auto work = After(milliseconds(10000));
    EXPECT_TRUE(work.queries.empty());
    EXPECT_TRUE(work.reports.empty()) << "again";
}

TEST_F(PrinterTableTest, AFloodOfPortsOfAPlace_TakesNoChanceFromALateOne) {
    const int ports = static_cast<int>(kMaxServicesOfPlace) + 50;
    std::size_t leftOut = 0;
    for (int number = 1; number <= ports; ++number) {
        const ServiceId id = Id(ServiceKind::Ipp, "Silent " + std::to_string(number));
        table.Announced(id);
        table.Resolved(id, Place(1, kUuid, static_cast<std::uint16_t>(number)), now);
        leftOut += After(milliseconds(2)).leftOut.size();
    }
    EXPECT_EQ(leftOut, 50u);
    table.Resolved(Id(ServiceKind::Ipp, "Late"), Place(1, kUuid, 9631), now);
    std::optional<PrinterTable::QueryId> asked;
    for (auto work = Now(); !asked && work.next; now = *work.next, work = table.Advance(now)) {
        for (const auto& query : work.queries) {
            asked = query.printer.port == 9631 ? query.id : asked;
        }
    }
    ASSERT_TRUE(asked);
    table.Answered(*asked, Attributes());
    const auto done = Now();
    ASSERT_EQ(done.reports.size(), 1u);
    EXPECT_EQ(done.reports[0].port, 9631);
}

TEST_F(PrinterTableTest, APlaceThatRefusesToTell_IsReportedBehindTheOneThatAnswers) {
    ResolveTwoOfWhichTheFirstRefuses();
    EXPECT_EQ(AddressesOf(After(kPatienceForIpp)), Texts{"192.0.2.1"});
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "each once";
}

TEST_F(PrinterTableTest, APlaceThatRefusesToTell_WaitsForTheReportOfTheOneThatAnswered) {
    ResolvePlace(1);
    ResolvePlace(2);
    ResolvePlace(3);
    const auto asking = Now();
    table.Refused(asking.queries.at(1).id);
    now += kPatienceForIpp - milliseconds(1);
    table.Answered(asking.queries.at(2).id, Attributes());
    EXPECT_TRUE(Now().reports.empty()) << "the first one may answer";
    EXPECT_TRUE(After(milliseconds(1)).reports.empty()) << "the second one is behind the third";
    EXPECT_EQ(AddressesOf(After(kPatienceForEarlierPlace)), (Texts{"192.0.2.3", "192.0.2.2"}));
}

TEST_F(PrinterTableTest, APlaceThatKeepsSilent_IsReportedBehindTheOneThatAnswers) {
    ResolvePlace(1);
    ResolvePlace(2);
    const auto asking = Now();
    table.Answered(asking.queries.at(1).id, Attributes());
    EXPECT_TRUE(Now().reports.empty());
    EXPECT_EQ(AddressesOf(After(kPatienceForEarlierPlace)), Texts{"192.0.2.2"});
    const auto work = After(kPatience);
    EXPECT_EQ(work.overdue, std::vector{asking.queries[0].id});
    EXPECT_TRUE(work.reports.empty()) << "it is not known whether anything is there";
    table.Refused(asking.queries[0].id);
    EXPECT_EQ(AddressesOf(Now()), Texts{"192.0.2.1"});
    table.Refused(asking.queries[0].id);
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty()) << "once";
}

TEST_F(PrinterTableTest, APlaceThatIsGone_WasNotSilent) {
    ResolvePlace(1);
    const auto query = Now().queries.at(0).id;
    EXPECT_EQ(After(kPatience).overdue, std::vector{query});
    table.Gone(PlaceId(1));
    table.Refused(query);
    table.Refused(77);
    EXPECT_TRUE(Now().reports.empty());
}

TEST_F(PrinterTableTest, APlaceThatRefusedToTell_AndMovedToWhereNothingAnswers_IsLeftOut) {
    ResolveTwoOfWhichTheFirstRefuses();
    table.Resolved(PlaceId(1), Place(7), now);
    table.Answered(Now().queries.at(0).id, std::nullopt);
    EXPECT_TRUE(After(milliseconds(10000)).reports.empty());
}

TEST_F(PrinterTableTest, AServiceThatMovesWhileItIsAsked_IsAskedWhereItIs) {
    ResolvePlace(1);
    const auto before = Now().queries.at(0).id;
    table.Resolved(PlaceId(1), Place(7), now);
    const auto work = Now();
    EXPECT_EQ(work.overdue, std::vector{before});
    ASSERT_EQ(work.queries.size(), 1u);
    table.Gone(PlaceId(1));
    EXPECT_TRUE(table.IsEmpty());
    EXPECT_EQ(Now().overdue, std::vector{work.queries[0].id});
}

TEST_F(PrinterTableTest, AServiceSeenTwice_IsAskedAgainWhenTheOneThatWasAskedIsGone) {
    Resolve(Id(ServiceKind::Ipp));
    Resolve(Id(ServiceKind::Ipp, "Laser", 3));
    EXPECT_EQ(Now().queries.size(), 1u);
    table.Gone(Id(ServiceKind::Ipp));
    EXPECT_EQ(Now().queries.size(), 1u);
}

TEST_F(PrinterTableTest, NoMoreQuestionsAreUnderWayThanThereIsRoomFor) {
    table.LimitQuestions(4);
    for (int number = 1; number <= 6; ++number) {
        ResolvePlace(number, "");
    }
    const auto asking = Now();
    EXPECT_EQ(asking.queries.size(), 4u);
    ASSERT_TRUE(asking.next);
    EXPECT_LE(*asking.next, now + kYouthOfQuestion) << "others may make room";
    EXPECT_TRUE(After(kYouthOfQuestion).queries.empty());
    table.LimitQuestions(5);
    EXPECT_EQ(Now().queries.size(), 1u);
    table.Answered(asking.queries[0].id, std::nullopt);
    EXPECT_EQ(Now().queries.size(), 1u);
}

TEST_F(PrinterTableTest, WhatIsUnknown_IsIgnored) {
    table.Refused(77);
    table.Gone(Id(ServiceKind::Ipp));
    table.Answered(77, Attributes());
    EXPECT_TRUE(Now().reports.empty());
}

}  // namespace
}  // namespace Driverless
