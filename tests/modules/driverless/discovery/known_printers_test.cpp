// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "modules/driverless/discovery/known_printers.h"

namespace Driverless {
namespace {

const std::string kOne = "7e21a7d4-0000-4000-8000-000000000001";
const std::string kOther = "7e21a7d4-0000-4000-8000-000000000002";

Printer At(const std::string& address, const std::string& uuid = {}, std::uint16_t port = 631) {
    Printer printer;
    printer.serialNumber = "S1";
    printer.uuid = uuid;
    printer.address = address;
    printer.port = port;
    return printer;
}

Printer Announced(const std::string& name, const std::string& address,
                  const std::string& uuid = {}) {
    Printer printer = At(address, uuid);
    printer.id = {name, "local", ServiceKind::Ipp, 2};
    return printer;
}

class Memory : public testing::Test {
protected:
    // The address that is remembered of the printer that a record with that address describes.
    std::string Remembered(const Printer& described) {
        const auto printer = memory.Find(described);
        return printer ? printer->address + ":" + std::to_string(printer->port) : "none";
    }

    PrinterMemory memory;
};

TEST_F(Memory, KnowsNothingAtFirst) {
    EXPECT_EQ(Remembered(At("192.0.2.1")), "none");
    memory.Forget(At("192.0.2.1"));
}

TEST_F(Memory, FollowsTheOnlyPrinterOfASerialNumberToItsNewAddress) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2", kOne));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.2:631");
    EXPECT_EQ(Remembered(At("", {}, 0)), "192.0.2.2:631");
    memory.Forget(At("192.0.2.3"));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "none");
}

TEST_F(Memory, TakesAPrinterWithoutAUuidForTheOnlyOneOfItsSerialNumber) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2"));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.2:631");
}

TEST_F(Memory, TellsPrintersWithOneSerialNumberApartByTheirPlace) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2", kOther));
    memory.Remember(At("192.0.2.2", "7e21a7d4-0000-4000-8000-000000000003", 8631));
    EXPECT_EQ(memory.Find(At("192.0.2.1"))->uuid, kOne);
    EXPECT_EQ(memory.Find(At("192.0.2.2"))->uuid, kOther);
    EXPECT_EQ(Remembered(At("192.0.2.2", {}, 8631)), "192.0.2.2:8631");
}

TEST_F(Memory, TellsPrintersApartByTheNamesTheyAnnounceWhereNotBothHaveAUuid) {
    for (const std::string& uuid : {std::string(), kOne}) {
        PrinterMemory fresh;
        fresh.Remember(Announced("Office", "192.0.2.1", uuid));
        fresh.Remember(Announced("Store", "192.0.2.2"));
        EXPECT_EQ(fresh.Find(At("192.0.2.1"))->id.name, "Office");
        EXPECT_EQ(fresh.Find(At("192.0.2.2"))->id.name, "Store");
    }
}

TEST_F(Memory, FollowsAPrinterWithoutAUuidByTheNameItAnnounces) {
    memory.Remember(Announced("Office", "192.0.2.1"));
    memory.Remember(Announced("Store", "192.0.2.2"));
    memory.Remember(Announced("Office", "192.0.2.3"));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.3:631");
    EXPECT_EQ(Remembered(At("192.0.2.2")), "192.0.2.2:631");
    memory.Remember(Announced("Store", "192.0.2.1"));
    EXPECT_EQ(memory.Find(At("192.0.2.1"))->id.name, "Store");
    EXPECT_EQ(memory.Find(At("192.0.2.3"))->id.name, "Office");
}

TEST_F(Memory, TakesAPrinterThatWasMetInItsOwnNetworkForTheOneThatIsAnnounced) {
    memory.Remember(At("192.168.49.1"));
    memory.Remember(Announced("Office", "192.0.2.1"));
    EXPECT_EQ(Remembered(At("192.168.49.1")), "192.0.2.1:631");
}

TEST_F(Memory, GivesNoneOfThemForAPlaceWhereNoneWas) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2", kOther));
    EXPECT_EQ(Remembered(At("192.0.2.3")), "none");
    EXPECT_EQ(Remembered(At("", {}, 0)), "none");
}

TEST_F(Memory, FollowsEachOfThemToItsNewAddress) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2", kOther));
    memory.Remember(At("192.0.2.3", kOne));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.3:631");
    EXPECT_EQ(Remembered(At("192.0.2.2")), "192.0.2.2:631");
}

TEST_F(Memory, GivesAPlaceToThePrinterThatWasThereLast) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Remember(At("192.0.2.2", kOther));
    memory.Remember(At("192.0.2.3", kOne));
    memory.Remember(At("192.0.2.1", kOther));
    EXPECT_EQ(memory.Find(At("192.0.2.1"))->uuid, kOther);
    EXPECT_EQ(memory.Find(At("192.0.2.3"))->uuid, kOne);
}

TEST_F(Memory, NeverGivesAnotherPrinterForOneThatWasForgotten) {
    memory.Remember(At("192.0.2.1", kOne));
    memory.Forget(At("192.0.2.1"));
    memory.Remember(At("192.0.2.2", kOther));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "none");
    EXPECT_EQ(Remembered(At("192.0.2.2")), "192.0.2.2:631");
    memory.Forget(At("192.0.2.2"));
    EXPECT_EQ(Remembered(At("192.0.2.2")), "none");
    memory.Remember(At("192.0.2.1", kOne));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.1:631");
}

TEST_F(Memory, KeepsEachPlaceThatAnnouncesAUuid) {
    memory.Remember(Announced("Office", "192.0.2.1", kOne));
    memory.Remember(Announced("Impostor", "192.0.2.66", kOne));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.1:631");
    EXPECT_EQ(Remembered(At("192.0.2.66")), "192.0.2.66:631");
    EXPECT_EQ(Remembered(At("", {}, 0)), "192.0.2.66:631") << "the latest";
    memory.Remember(Announced("Office", "192.0.2.2", kOne));
    EXPECT_EQ(Remembered(At("192.0.2.1")), "192.0.2.2:631") << "it has moved";
    EXPECT_EQ(Remembered(At("192.0.2.66")), "192.0.2.66:631");
    memory.Forget(At("192.0.2.1"));
    EXPECT_EQ(Remembered(At("192.0.2.66")), "none") << "one printer";
}

TEST_F(Memory, HasARecordsOwnPlaceAskedFirst) {
    const auto toAsk = [&](const Printer& described) {
        const auto [first, second] = memory.PlacesToAsk(described);
        return std::pair(first.address, second.address);
    };
    using Addresses = std::pair<std::string, std::string>;
    EXPECT_EQ(toAsk(At("192.0.2.1")), (Addresses{"192.0.2.1", "192.0.2.1"})) << "nothing known";
    memory.Remember(Announced("Office", "192.0.2.1", kOne));
    memory.Remember(Announced("Impostor", "192.0.2.66", kOne));
    EXPECT_EQ(toAsk(At("192.0.2.1")), (Addresses{"192.0.2.1", "192.0.2.66"}));
    EXPECT_EQ(toAsk(At("192.0.2.66")), (Addresses{"192.0.2.66", "192.0.2.66"}));
    EXPECT_EQ(toAsk(At("192.0.2.9")), (Addresses{"192.0.2.9", "192.0.2.66"})) << "never seen";
    EXPECT_EQ(memory.PlacesToAsk(At("192.0.2.9")).first.uuid, kOne) << "who is to answer there";
    memory.Remember(Announced("Office", "192.0.2.2", kOne));
    EXPECT_EQ(toAsk(At("192.0.2.1")), (Addresses{"192.0.2.2", "192.0.2.2"})) << "it has moved";
    memory.Forget(At("192.0.2.2"));
    EXPECT_EQ(toAsk(At("192.0.2.1")), (Addresses{"192.0.2.1", "192.0.2.1"})) << "forgotten";
}

Printer Numbered(const std::string& serialNumber, const std::string& address) {
    Printer printer = At(address);
    printer.serialNumber = serialNumber;
    return printer;
}

TEST_F(Memory, OfAFlood_IsBoundedAndCostsNobodyElse) {
    constexpr int flood = 20000;
    for (int number = 0; number < flood; ++number) {
        if (number % 1000 == 0) {
            memory.Remember(Numbered("Honest " + std::to_string(number), "192.0.2.7"));
        }
        memory.Remember(Numbered(std::to_string(number), "192.0.2.66"));
    }
    std::size_t ofFlood = 0;
    for (int number = 0; number < flood; ++number) {
        ofFlood += memory.Find(Numbered(std::to_string(number), "192.0.2.66")) ? 1U : 0U;
        if (number % 1000 == 0) {
            EXPECT_TRUE(memory.Find(Numbered("Honest " + std::to_string(number), "192.0.2.7")));
        }
    }
    EXPECT_LE(ofFlood, kMaxKnownPrinters);
    EXPECT_GT(ofFlood, kMaxKnownPrinters / 2);
    EXPECT_TRUE(memory.Find(Numbered(std::to_string(flood - 1), "192.0.2.66"))) << "the latest";
}

TEST_F(Memory, OfManyWithOneSerialNumber_IsBounded) {
    constexpr int flood = 1000;
    const auto place = [](int number) {
        return "198.51." + std::to_string(number / 250) + "." + std::to_string(number % 250);
    };
    for (int number = 0; number < flood; ++number) {
        memory.Remember(Announced("Printer " + std::to_string(number), place(number)));
    }
    std::size_t known = 0;
    for (int number = 0; number < flood; ++number) {
        known += memory.Find(At(place(number))) ? 1U : 0U;
    }
    EXPECT_LE(known, kMaxOfOneSerialNumber);
    EXPECT_GT(known, kMaxOfOneSerialNumber / 2);
}

TEST_F(Memory, OfManyPlaces_IsBounded) {
    const auto uuidOf = [](int number) {
        std::string uuid = kOne;
        uuid.replace(0, 4, std::to_string(1000 + number));
        return uuid;
    };
    for (int number = 0; number < 1000; ++number) {
        for (std::uint16_t port = 1; port <= kMaxKnownPlaces; ++port) {
            Printer printer =
                Announced("Port " + std::to_string(port), "192.0.2.66", uuidOf(number));
            printer.serialNumber = uuidOf(number);
            printer.port = port;
            memory.Remember(printer);
        }
    }
    std::size_t known = 0;
    for (int number = 0; number < 1000; ++number) {
        Printer printer = At("192.0.2.66", {}, 1);
        printer.serialNumber = uuidOf(number);
        known += memory.Find(printer) ? kMaxKnownPlaces : 0U;
    }
    EXPECT_LE(known, 2 * kMaxKnownPrinters);
    EXPECT_GT(known, kMaxKnownPrinters);
}

TEST_F(Memory, OfAPrinterThatMoves_HasItsLatestPlaces) {
    memory.Remember(At("192.0.2.1", kOther));
    for (std::uint16_t port = 1; port <= 100; ++port) {
        memory.Remember(At("192.0.2.2", kOne, port));
    }
    EXPECT_EQ(Remembered(At("192.0.2.2", {}, 85)), "192.0.2.2:100");
    EXPECT_EQ(Remembered(At("192.0.2.2", {}, 84)), "none");
}

}  // namespace
}  // namespace Driverless
