// SPDX-License-Identifier: Apache-2.0

// The printers on USB, by the system's own USB library over simulated devices.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "VendorSdk/entry_points.h"
#include "modules/driverless/common/results.h"
#include "tests/support/failing_memory.h"
#include "tests/support/simulated_usb.h"

VENDORSDK_EXPORT(GetDeviceInfoByUsb);

namespace UsbTest {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint16_t kVendorId = 0x1209;
constexpr std::uint16_t kProductId = 0x0001;
constexpr std::size_t kRoom = VendorSdk::kMaxDevices;
constexpr uid_t kNobody = 65534;

struct Look {
    int result = -1;
    std::int32_t count = -1;
    std::vector<VendorSdk::DeviceInfo> records;
    bool isRestUntouched = false;
    std::string said;  // to standard error
};

std::vector<VendorSdk::DeviceInfo> Soiled() {
    std::vector<VendorSdk::DeviceInfo> records(kRoom + 1);
    std::memset(records.data(), 0xEE, records.size() * sizeof records[0]);
    return records;
}

class UsbPrinters : public testing::Test {
protected:
    static Look Ask(std::uint16_t productId = kProductId, std::uint16_t vendorId = kVendorId) {
        Look look;
        look.records = Soiled();
        look.count = 0;
        testing::internal::CaptureStderr();
        look.result = GetDeviceInfoByUsb(productId, vendorId, look.records.data(), &look.count);
        look.said = testing::internal::GetCapturedStderr();
        const auto count = static_cast<std::size_t>(look.count);
        const auto untouched = Soiled();
        look.isRestUntouched = std::memcmp(&look.records.at(count), untouched.data(),
                                           (untouched.size() - count) * sizeof untouched[0]) == 0;
        look.records.resize(count);
        return look;
    }

    static std::vector<std::string> SerialNumbers(const Look& look) {
        std::vector<std::string> numbers;
        for (const auto& record : look.records) {
            numbers.emplace_back(record.deviceSN);
        }
        return numbers;
    }

    void Plug(const SimulatedDevice& printer) { usb.Plug(printer); }

    void PlugSaying(const std::string& deviceId, Manner manner = Manner::Answers) {
        SimulatedDevice printer;
        printer.deviceId = deviceId;
        printer.serialNumber.clear();
        printer.manner = manner;
        Plug(printer);
    }

    SimulatedUsb usb;
};

SimulatedDevice At(const std::string& place, const std::string& serialNumber) {
    SimulatedDevice printer;
    printer.place = place;
    printer.deviceId = "MFG:Acme;MDL:USB Laser;SN:" + serialNumber + ";";
    printer.serialNumber.clear();
    return printer;
}

TEST_F(UsbPrinters, AreDescribedWhole) {
    Plug({});
    const Look look = Ask();
    ASSERT_EQ(look.result, Driverless::kOk);
    ASSERT_EQ(look.count, 1);
    const VendorSdk::DeviceInfo& record = look.records[0];
    VendorSdk::DeviceInfo expected{};
    expected.code2 = 5;
    std::strcpy(expected.deviceSN, "STRING1");
    std::strcpy(expected.modelID, "driverless");
    std::strcpy(expected.extra1, "Acme USB Laser");
    std::strcpy(expected.extra2, "usb:1-1");
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0)
        << record.deviceSN << '|' << record.modelID << '|' << record.extra1 << '|' << record.extra2;
    EXPECT_TRUE(look.isRestUntouched);
    EXPECT_EQ(look.said, "");
}

TEST_F(UsbPrinters, OfOneModelAreAllReportedByTheirPlace) {
    Plug(At("2-1", "C"));
    Plug(At("1-10", "B"));
    Plug(At("1-3", "A"));
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_THAT(SerialNumbers(look), ElementsAre("A", "B", "C"));
}

TEST_F(UsbPrinters, BehindAHubHaveTheWholeWayAsTheirPlace) {
    SimulatedDevice hub = At("1-4", "-");
    hub.productId = 0x0099;
    hub.interfaceClasses = {9};
    Plug(hub);
    Plug(At("1-4.2", "A"));
    const Look look = Ask();
    ASSERT_EQ(look.count, 1);
    EXPECT_STREQ(look.records[0].extra2, "usb:1-4.2");
}

TEST_F(UsbPrinters, OfOtherModelsAndMakersAreLeftOut) {
    SimulatedDevice otherModel = At("1-1", "A");
    otherModel.productId = 0x0002;
    SimulatedDevice otherMaker = At("1-2", "B");
    otherMaker.vendorId = 0x1210;
    Plug(otherModel);
    Plug(otherMaker);
    Plug(At("1-3", "C"));
    EXPECT_THAT(SerialNumbers(Ask()), ElementsAre("C"));
    EXPECT_THAT(SerialNumbers(Ask(0x0002)), ElementsAre("A"));
    EXPECT_THAT(SerialNumbers(Ask(0x0001, 0x1210)), ElementsAre("B"));
}

TEST_F(UsbPrinters, WithSeveralInterfacesAreReportedOnceAndAskedAtTheRightOne) {
    SimulatedDevice composite;
    composite.interfaceClasses = {0xFF, 8, 7, 7};
    Plug(composite);
    EXPECT_THAT(SerialNumbers(Ask()), ElementsAre("STRING1"));
}

TEST_F(UsbPrinters, DoNotIncludeWhatIsNoPrinter) {
    SimulatedDevice disk;
    disk.interfaceClasses = {8, 3};
    Plug(disk);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_EQ(look.count, 0);
    EXPECT_TRUE(look.isRestUntouched);
}

TEST_F(UsbPrinters, AreNoneWithoutAny) {
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_EQ(look.count, 0);
}

TEST_F(UsbPrinters, CannotBeLookedForWithoutAnyFileToSpare) {
    Plug({});
    VendorSdk::DeviceInfo record{};
    std::int32_t count = 7;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const int next = dup(STDOUT_FILENO);
    close(next);
    const rlimit none{static_cast<rlim_t>(next), before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const int result = GetDeviceInfoByUsb(kProductId, kVendorId, &record, &count);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(result, Driverless::kNoUsbAnswer);
    EXPECT_EQ(count, 0);
}

TEST_F(UsbPrinters, ThatWereUnpluggedAreGone) {
    const SimulatedDevice printer = At("1-1", "A");
    Plug(printer);
    Plug(At("1-2", "B"));
    usb.Unplug(printer);
    EXPECT_THAT(SerialNumbers(Ask()), ElementsAre("B"));
}

TEST_F(UsbPrinters, ThatGoWhileTheyAreAskedAreGoneToo) {
    PlugSaying("SN:A;", Manner::GoneMeanwhile);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_EQ(look.count, 0);
    EXPECT_EQ(look.said, "");
}

TEST_F(UsbPrinters, HaveTheSerialNumberOfTheirDeviceIdInAnySpelling) {
    const std::vector<std::pair<std::string, std::string>> spellings{
        {"MFG:Acme;SN:A1;", "A1"},
        {"MFG:Acme; SERIALNUMBER: A2 ;", "A2"},
        {"SERN:A3", "A3"},
        {"MFG:Acme;SN:;SERN:A4;", "A4"}};
    for (const auto& [deviceId, serialNumber] : spellings) {
        SimulatedUsb other;
        SimulatedDevice printer;
        printer.deviceId = deviceId;
        printer.serialNumber.clear();
        other.Plug(printer);
        EXPECT_THAT(SerialNumbers(Ask()), ElementsAre(serialNumber)) << deviceId;
    }
}

TEST_F(UsbPrinters, HaveTheSerialNumberOfTheDeviceWhereTheDeviceIdSaysAnother) {
    SimulatedDevice printer;
    printer.deviceId = "MFG:Acme;MDL:9;SN:OfTheModel;";
    printer.serialNumber = u" OWN 1 ";
    Plug(printer);
    EXPECT_THAT(SerialNumbers(Ask()), ElementsAre("OWN 1"));
}

TEST_F(UsbPrinters, HaveTheSerialNumberOfTheDeviceWhereTheDeviceIdHasNone) {
    SimulatedDevice printer;
    printer.deviceId = "MANUFACTURER:Acme;MODEL:9;";
    Plug(printer);
    const Look look = Ask();
    EXPECT_THAT(SerialNumbers(look), ElementsAre("STRING1"));
    EXPECT_STREQ(look.records.at(0).extra1, "Acme 9");
}

TEST_F(UsbPrinters, WithoutSerialNumbersAreToldApartByTheirPlace) {
    SimulatedDevice printer;
    printer.deviceId = "MFG:Acme;MDL:9;";
    printer.serialNumber.clear();
    Plug(printer);
    printer.place = "1-2";
    printer.serialNumber = u"  ";
    Plug(printer);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_THAT(SerialNumbers(look), ElementsAre("usb:1-1", "usb:1-2"));
}

TEST_F(UsbPrinters, ThatRefuseTheirDeviceIdAreDescribedByTheirStrings) {
    SimulatedDevice printer;
    printer.manner = Manner::RefusesDeviceId;
    printer.maker = u"Grün \U0001F5A8";
    Plug(printer);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    ASSERT_THAT(SerialNumbers(look), ElementsAre("STRING1"));
    EXPECT_STREQ(look.records[0].extra1, "Gr\u00FCn \U0001F5A8 Laser on USB");
}

TEST_F(UsbPrinters, ThatSayNothingOfThemselvesAreDescribedByTheirNumbers) {
    SimulatedDevice printer;
    printer.manner = Manner::RefusesDeviceId;
    printer.maker.clear();
    printer.product.clear();
    printer.serialNumber.clear();
    Plug(printer);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    ASSERT_THAT(SerialNumbers(look), ElementsAre("usb:1-1"));
    EXPECT_STREQ(look.records[0].extra1, "USB printer 1209:0001");
}

TEST_F(UsbPrinters, ThatSayTooMuchAreCut) {
    PlugSaying("MFG:Acme\x1b[31m;MDL:" + std::string(200, 'm') + ";SN:" + std::string(200, 's') +
               ";CMD:" + std::string(2000, 'c') + ";");
    const Look look = Ask();
    ASSERT_EQ(look.count, 1);
    EXPECT_EQ(look.records[0].deviceSN, std::string(63, 's'));
    EXPECT_EQ(look.records[0].extra1, "Acme [31m " + std::string(53, 'm'));
}

TEST_F(UsbPrinters, ThatWantTheirInterfaceClaimedAreClaimed) {
    PlugSaying("SN:A;", Manner::WantsItsInterface);
    EXPECT_THAT(SerialNumbers(Ask()), ElementsAre("A"));
}

TEST_F(UsbPrinters, WhoseInterfaceIsTakenAreDescribedByTheirStrings) {
    SimulatedDevice printer;
    printer.manner = Manner::InterfaceIsTaken;
    Plug(printer);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_THAT(SerialNumbers(look), ElementsAre("STRING1"));
}

TEST_F(UsbPrinters, ThatAreTakenAreBusy) {
    PlugSaying("SN:A;", Manner::EverythingIsTaken);
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kBusy);
    EXPECT_EQ(look.count, 0);
    EXPECT_TRUE(look.isRestUntouched);
    EXPECT_THAT(look.said, HasSubstr("usb:1-1 cannot be asked: another program has the device"));
}

TEST_F(UsbPrinters, ThatAreSilentAreAskedForASecond) {
    PlugSaying("SN:A;", Manner::Silent);
    const auto begin = std::chrono::steady_clock::now();
    const Look look = Ask();
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(look.result, Driverless::kNoUsbAnswer);
    EXPECT_EQ(look.count, 0);
    EXPECT_THAT(look.said, HasSubstr("does not answer"));
    EXPECT_GE(took, std::chrono::milliseconds(990));
    EXPECT_LT(took, std::chrono::milliseconds(3000));
}

TEST_F(UsbPrinters, ThatAreSilentKeepNoOthersWaiting) {
    for (int port = 1; port <= 50; ++port) {
        SimulatedDevice printer = At("1-" + std::to_string(port), std::to_string(port));
        printer.manner = port % 10 == 0 ? Manner::Answers : Manner::Silent;
        Plug(printer);
    }
    const auto begin = std::chrono::steady_clock::now();
    const Look look = Ask();
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_THAT(SerialNumbers(look), ElementsAre("10", "20", "30", "40", "50"));
    EXPECT_GE(took, std::chrono::milliseconds(990));
    EXPECT_LT(took, std::chrono::milliseconds(6000)) << "one after the other they take 45 s";
    EXPECT_LT(look.said.find("usb:1-1 cannot"), look.said.find("usb:1-49 cannot"));
}

// This thread opens files as a user without rights to what only root has.
class AsNobody {
public:
    AsNobody() : before(static_cast<uid_t>(setfsuid(geteuid() == 0 ? kNobody : geteuid()))) {}
    ~AsNobody() { setfsuid(before); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    const uid_t before;
};

TEST_F(UsbPrinters, ThatThisUserMayNotOpenAreForbidden) {
    Plug({});
    usb.Forbid({});
    const AsNobody nobody;
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kNoAccess);
    EXPECT_EQ(look.count, 0);
    EXPECT_THAT(look.said, HasSubstr("usb:1-1 cannot be asked: this user has no rights"));
}

TEST_F(UsbPrinters, ThatCannotBeAskedDoNotHideTheOthers) {
    const SimulatedDevice forbidden = At("1-1", "A");
    SimulatedDevice taken = At("1-2", "B");
    taken.manner = Manner::EverythingIsTaken;
    Plug(forbidden);
    Plug(taken);
    usb.Forbid(forbidden);
    {
        const AsNobody nobody;
        EXPECT_EQ(Ask().result, Driverless::kNoAccess) << "the first one's";
    }
    Plug(At("1-3", "C"));
    const AsNobody nobody;
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    EXPECT_THAT(SerialNumbers(look), ElementsAre("C"));
    EXPECT_THAT(look.said, HasSubstr("usb:1-1 cannot"));
    EXPECT_THAT(look.said, HasSubstr("usb:1-2 cannot"));
}

TEST_F(UsbPrinters, AreSixtyFourAtMost) {
    for (int port = 1; port <= 65; ++port) {
        Plug(At("1-" + std::to_string(port), std::to_string(port)));
        if (port == 64) {
            const Look all = Ask();
            EXPECT_EQ(all.count, 64);
            EXPECT_EQ(all.said, "");
        }
    }
    const Look look = Ask();
    EXPECT_EQ(look.result, Driverless::kOk);
    ASSERT_EQ(look.count, 64);
    EXPECT_STREQ(look.records[0].deviceSN, "1");
    EXPECT_STREQ(look.records[63].deviceSN, "64");
    EXPECT_TRUE(look.isRestUntouched);
    EXPECT_THAT(look.said, HasSubstr("more than 64 printers of one model"));
}

// What another program finds out about the same devices: serial number, and maker and product.
std::set<std::pair<std::string, std::string>> AsLsusbSeesThem() {
    std::istringstream lines(RunAndRead("lsusb -v -d 1209:0001 2>/dev/null"));
    std::set<std::pair<std::string, std::string>> printers;
    std::string maker;
    std::string product;
    std::string serialNumber;
    std::string line;
    const auto textOf = [&line] {
        std::istringstream words(line);
        std::string word;
        words >> word >> word >> std::ws;
        std::getline(words, word);
        return word;
    };
    while (std::getline(lines, line)) {
        int interfaceClass = 0;
        if (line.find("iManufacturer ") != std::string::npos) {
            maker = textOf();
        } else if (line.find("iProduct ") != std::string::npos) {
            product = textOf();
        } else if (line.find("iSerial ") != std::string::npos) {
            serialNumber = textOf();
        } else if (std::sscanf(line.c_str(), " bInterfaceClass %d", &interfaceClass) == 1 &&
                   interfaceClass == 7) {
            printers.emplace(serialNumber, maker + " " + product);
        }
    }
    return printers;
}

TEST_F(UsbPrinters, AreWhatLsusbSees) {
    for (int port = 1; port <= 5; ++port) {
        SimulatedDevice printer = At("1-" + std::to_string(port), "");
        printer.manner = Manner::RefusesDeviceId;
        printer.serialNumber = u"S";
        printer.serialNumber += static_cast<char16_t>(u'0' + port);
        printer.interfaceClasses =
            port == 5 ? std::vector<unsigned>{8} : std::vector<unsigned>{0xFF, 7, 7};
        Plug(printer);
    }
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& record : Ask().records) {
        seen.emplace(record.deviceSN, record.extra1);
    }
    EXPECT_EQ(seen.size(), 4U);
    EXPECT_EQ(seen, AsLsusbSeesThem());
}

TEST_F(UsbPrinters, AreFoundBySeveralThreadsAtOnce) {
    Plug(At("1-1", "A"));
    Plug(At("1-2", "B"));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([] {
            for (int turn = 0; turn < 20; ++turn) {
                std::vector<VendorSdk::DeviceInfo> records(kRoom);
                std::int32_t count = 0;
                EXPECT_EQ(GetDeviceInfoByUsb(kProductId, kVendorId, records.data(), &count), 0);
                EXPECT_EQ(count, 2);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(UsbPrinters, WithoutMemoryAreNoneAndTheCallerIsToldWhy) {
    Plug(At("1-1", "A"));
    std::vector<VendorSdk::DeviceInfo> records(kRoom);
    std::int32_t count = -1;
    for (long number = 1;; ++number) {
        const FailingMemory::FailsAt memory(number, FailingMemory::Then::StaysGone);
        const int result = GetDeviceInfoByUsb(kProductId, kVendorId, records.data(), &count);
        if (!FailingMemory::HasFailed()) {
            EXPECT_EQ(result, Driverless::kOk);
            EXPECT_GT(number, 1);
            break;
        }
        ASSERT_EQ(result, Driverless::kNoResources) << number;
        ASSERT_EQ(count, 0) << number;
    }
}

TEST_F(UsbPrinters, NeedRoom) {
    Plug({});
    VendorSdk::DeviceInfo record{};
    std::int32_t count = 7;
    EXPECT_EQ(GetDeviceInfoByUsb(kProductId, kVendorId, nullptr, &count), Driverless::kNoRecord);
    EXPECT_EQ(GetDeviceInfoByUsb(kProductId, kVendorId, &record, nullptr), Driverless::kNoRecord);
    EXPECT_EQ(count, 7);
}

}  // namespace
}  // namespace UsbTest
