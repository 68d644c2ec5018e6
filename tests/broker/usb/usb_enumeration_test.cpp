// SPDX-License-Identifier: Apache-2.0

// The printers behind one USB hardware identifier.

#include <cstring>
#include <locale>
#include <stdexcept>

#include "tests/broker/usb/usb_support.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UsbEnumeration : public UsbTest {
protected:
    static constexpr char kIds[] = "pid:abcdvid1234";

    static ScriptedVendor::UsbEnumeration AskedOf(const std::string& moduleName) {
        const ScriptedVendor::Call call = ScriptedModule(moduleName).Calls().back();
        EXPECT_STREQ(call.entryPoint, "GetDeviceInfoByUsb");
        ScriptedVendor::UsbEnumeration question{};
        EXPECT_EQ(call.size, sizeof question);
        std::memcpy(&question, call.bytes, sizeof question);
        return question;
    }

    static void AddDevices(int count) {
        for (int number = 0; number < count; ++number) {
            ScriptedModule("scripted_all")
                .AddDevice(VendorDeviceOf("model " + std::to_string(number)));
        }
    }

    // The lines of an enumeration that appends `count` records to none.
    static Lines EnumerationEnds(int count, int total) {
        Lines lines{EnumerationSaid(1, "call Func OK" + std::to_string(count))};
        for (int number = 0; number < count; ++number) {
            lines.push_back(EnumerationSaid(3, "STEP.....add"));
        }
        lines.push_back(EnumerationSaid(3, "STEP5"));
        lines.push_back(EnumerationSaid(3, "STEP6" + std::to_string(total)));
        return lines;
    }
};

TEST_F(UsbEnumeration, GivesTheVendorBothIdsTheProductsFirst) {
    With({Alpha()});
    EXPECT_EQ(Enumerate(kId), 0);
    const ScriptedVendor::UsbEnumeration question = AskedOf("scripted_all");
    EXPECT_EQ(question.productId, 0xABCD);
    EXPECT_EQ(question.vendorId, 0x1234);
    EXPECT_EQ(question.count, 0);
}

TEST_F(UsbEnumeration, LogsEachStepAndAppendsEveryByteInTheVendorsOrder) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(3);
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_EQ(TakeLines(), EnumerationBegins(kId, kIds) + EnumerationEnds(3, 3));
    ASSERT_THAT(devices, SizeIs(3));
    for (std::size_t number = 0; number < 3; ++number) {
        EXPECT_EQ(BytesOf(devices[number]), BytesOf(DeviceOf("model " + std::to_string(number))));
    }
}

TEST_F(UsbEnumeration, SaysThatItAsksBeforeItDoes) {
    With({Alpha()});
    const auto work = [] { Enumerate(kId); };
    EXPECT_THAT(CallsAtTheLine("STEP4", CallsOfAlpha, work), ElementsAre(IsEmpty()));
    EXPECT_THAT(CallsAtTheLine("call Func OK", CallsOfAlpha, work), ElementsAre(SizeIs(2)));
}

TEST_F(UsbEnumeration, AppendsToWhatIsThereAndCountsIt) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(1);
    std::vector<DeviceInfo> devices{DeviceOf("one"), DeviceOf("two")};
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_EQ(TakeLines(), EnumerationBegins(kId, kIds) + EnumerationEnds(1, 3));
    ASSERT_THAT(devices, SizeIs(3));
    EXPECT_EQ(BytesOf(devices[0]), BytesOf(DeviceOf("one")));
    EXPECT_EQ(BytesOf(devices[1]), BytesOf(DeviceOf("two")));
    EXPECT_EQ(BytesOf(devices[2]), BytesOf(DeviceOf("model 0")));
}

TEST_F(UsbEnumeration, DropsNoDuplicates) {
    UsbConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("same"));
    alpha.AddDevice(VendorDeviceOf("same"));
    std::vector<DeviceInfo> devices{DeviceOf("same")};
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_THAT(devices, SizeIs(3));
}

TEST_F(UsbEnumeration, ForcesNoTerminators) {
    UsbConnInterface& dispatcher = With({Alpha()});
    VendorSdk::DeviceInfo full;
    std::memset(&full, 'x', sizeof full);
    ScriptedModule("scripted_all").AddDevice(full);
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_EQ(BytesOf(devices.at(0)), std::string(sizeof full, 'x'));
}

TEST_F(UsbEnumeration, TakesUpToSixtyFourRecords) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(64);
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_EQ(TakeLines(), EnumerationBegins(kId, kIds) + EnumerationEnds(64, 64));
    ASSERT_THAT(devices, SizeIs(64));
    EXPECT_EQ(BytesOf(devices[63]), BytesOf(DeviceOf("model 63")));
}

TEST_F(UsbEnumeration, TakesNoneOfACountThatIsNoCount) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(64);
    const ScriptedModule alpha("scripted_all");
    for (const int count : {0, -1, 65, 2147483647, -2147483647 - 1}) {
        alpha.Script("count GetDeviceInfoByUsb " + std::to_string(count));
        std::vector<DeviceInfo> devices{DeviceOf("one")};
        EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
        EXPECT_THAT(devices, SizeIs(1));
        EXPECT_EQ(TakeLines(),
                  EnumerationBegins(kId, kIds) +
                      Lines({EnumerationSaid(1, "call Func OK" + std::to_string(count)),
                             EnumerationSaid(3, "STEP5"), EnumerationSaid(3, "STEP61")}));
    }
}

TEST_F(UsbEnumeration, TakesNoMoreThanTheCountSays) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(5);
    ScriptedModule("scripted_all").Script("count GetDeviceInfoByUsb 2");
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), 0);
    EXPECT_THAT(devices, SizeIs(2));
}

TEST_F(UsbEnumeration, ReturnsTheVendorsFailureUnchangedAndTakesNothing) {
    UsbConnInterface& dispatcher = With({Alpha()});
    AddDevices(2);
    for (const int result : {3, 1, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all")
            .Script("result GetDeviceInfoByUsb " + std::to_string(result));
        std::vector<DeviceInfo> devices{DeviceOf("one")};
        EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(kId)), result);
        EXPECT_THAT(devices, SizeIs(1));
        EXPECT_EQ(TakeLines(),
                  EnumerationBegins(kId, kIds) +
                      Lines({EnumerationSaid(4, "call Func Fail" + std::to_string(result)),
                             EnumerationSaid(3, "STEP61")}));
    }
}

TEST_F(UsbEnumeration, WithoutVendorsIsRefused) {
    With({});
    EXPECT_EQ(Enumerate(kId), kNotInitialised);
    EXPECT_THAT(TakeLines(),
                ElementsAre(EnumerationSaid(3, "STEP1"), EnumerationSaid(4, "NOINITOK")));
}

TEST_F(UsbEnumeration, OfAnIdentifierThatNobodyListsAsksNobody) {
    With({Alpha()});
    EXPECT_EQ(Enumerate("VID_1234&PID_abcd"), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(EnumerationSaid(3, "STEP1"), EnumerationSaid(3, "STEP2"),
                                         EnumerationSaid(3, "deviceID:VID_1234&PID_abcd"),
                                         EnumerationSaid(1, "usbId:VID_1234&PID_abcd"),
                                         EnumerationSaid(3, "call usb map find fail, err:")));
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbEnumeration, WithoutTheVendorsModuleAsksNobody) {
    With({Vendor("alpha", "no_such_module", kId)});
    EXPECT_EQ(Enumerate(kId), kNothingToCall);
    const Lines lines = TakeLines();
    ASSERT_THAT(lines, SizeIs(5));
    EXPECT_EQ(lines[4], EnumerationSaid(4, "call Func map find fail, err:"));
}

TEST_F(UsbEnumeration, WithoutTheVendorsEntryPointAsksNobody) {
    With({AlphaWithout("GetDeviceInfoByUsb")});
    EXPECT_EQ(Enumerate(kId), kNothingToCall);
    const Lines lines = TakeLines();
    ASSERT_THAT(lines, SizeIs(5));
    EXPECT_EQ(lines[4], EnumerationSaid(4, "pFunc is nullptr, err:"));
}

TEST_F(UsbEnumeration, FailsBeforeAnythingIsAppended) {
    UsbConnInterface& dispatcher =
        With({Vendor("alpha", "no_such_module", kId), Vendor("beta", "scripted_none", kOtherId)});
    for (const char* id : {"VID_0000&PID_0000", kId, kOtherId}) {
        std::vector<DeviceInfo> devices{DeviceOf("one")};
        EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(id)), kNothingToCall);
        EXPECT_THAT(devices, SizeIs(1));
    }
}

// The identifier is made narrow by the application's library, whatever that makes of it.
TEST_F(UsbEnumeration, LogsTheIdentifierWideAndLooksItUpNarrow) {
    With({Alpha()});
    std::wstring deviceId = Wide(kId);
    deviceId[0] = static_cast<wchar_t>(0x100 + 'V');
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, deviceId), 0);
    const Lines lines = TakeLines();
    EXPECT_EQ(lines.at(2), EnumerationSaid(3, "deviceID:<156>ID_1234&PID_ABCD"));
    EXPECT_EQ(lines.at(3), EnumerationSaid(1, "usbId:VID_1234&PID_ABCD"));
}

// What an identifier says, and what the vendor is given for it.
struct Reading {
    std::string id;
    std::uint16_t productId;
    std::uint16_t vendorId;
    std::string line;
};

void PrintTo(const Reading& reading, std::ostream* out) {
    *out << '"' << reading.id << '"';
}

class UsbIdentifier : public UsbEnumeration, public testing::WithParamInterface<Reading> {};

TEST_P(UsbIdentifier, IsReadAtItsFixedPlaces) {
    With({Vendor("alpha", "scripted_all", GetParam().id)});
    EXPECT_EQ(Enumerate(GetParam().id), 0);
    const ScriptedVendor::UsbEnumeration question = AskedOf("scripted_all");
    EXPECT_EQ(question.productId, GetParam().productId);
    EXPECT_EQ(question.vendorId, GetParam().vendorId);
    EXPECT_EQ(TakeLines().at(5), EnumerationSaid(1, GetParam().line));
}

INSTANTIATE_TEST_SUITE_P(
    Each, UsbIdentifier,
    testing::Values(Reading{"VID_ffFF&PID_aBcD", 0xABCD, 0xFFFF, "pid:abcdvidffff"},
                    Reading{"VID_0001&PID_0010", 0x10, 1, "pid:10vid1"},
                    Reading{"VID_0000&PID_0000", 0, 0, "pid:0vid0"},
                    Reading{"VID_1234&PID_ABCD&REV_0100&MI_00", 0xABCD, 0x1234, "pid:abcdvid1234"},
                    Reading{"xxxx5678yyyyy9ABCzzzz", 0x9ABC, 0x5678, "pid:9abcvid5678"},
                    // No more than four digits.
                    Reading{"VID_12345PID_ABCDE", 0xABCD, 0x1234, "pid:abcdvid1234"},
                    // As much as there is.
                    Reading{"VID_1234&PID_", 0, 0x1234, "pid:0vid1234"},
                    Reading{"VID_1234&PID_A", 0xA, 0x1234, "pid:avid1234"},
                    Reading{"VID_1234&PID_ABC", 0xABC, 0x1234, "pid:abcvid1234"},
                    // Up to what is no digit; nothing when the first is none.
                    Reading{"VID_12G4&PID_A-CD", 0xA, 0x12, "pid:avid12"},
                    Reading{"VID_G234&PID_zzzz", 0, 0, "pid:0vid0"},
                    // Signs.
                    Reading{"VID_-001&PID_-FFF", 0xF001, 0xFFFF, "pid:fffff001vidffffffff"},
                    Reading{"VID_+123&PID_+00A", 0xA, 0x123, "pid:avid123"},
                    Reading{"VID_----&PID_+-12", 0, 0, "pid:0vid0"},
                    // The prefix.
                    Reading{"VID_0x12&PID_0XaB", 0xAB, 0x12, "pid:abvid12"},
                    Reading{"VID_0x1G&PID_00x1", 0, 1, "pid:0vid1"},
                    // White space that is no blank.
                    Reading{"VID_\t\n12&PID_\r\v\fF", 0xF, 0x12, "pid:fvid12"}),
    [](const auto& instance) { return "Number" + std::to_string(instance.index); });

// Numbers in groups of two, behind commas.
class InGroups : public std::numpunct<char> {
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\2"; }
};

TEST_F(UsbEnumeration, ReadsTheIdentifierAsTheGlobalLocaleWritesNumbers) {
    const std::string grouped = "VID_1,23&PID_ABCD";
    With({Vendor("alpha", "scripted_all", kId + (' ' + grouped))});
    const std::locale before = std::locale::global({std::locale(), new InGroups});
    EXPECT_EQ(Enumerate(kId), 0);
    EXPECT_EQ(AskedOf("scripted_all").vendorId, 0x1234);
    EXPECT_EQ(AskedOf("scripted_all").productId, 0xABCD);
    EXPECT_EQ(Enumerate(grouped), 0);
    EXPECT_EQ(AskedOf("scripted_all").vendorId, 0x123);
    std::locale::global(before);
}

TEST_F(UsbEnumeration, OfAnIdentifierTooShortForTheVendorIdThrowsAfterTheThirdStep) {
    With({Vendor("alpha", "scripted_all", "V VID")});
    for (const char* id : {"V", "VID"}) {
        EXPECT_THROW(Enumerate(id), std::out_of_range) << id;
        EXPECT_EQ(TakeLines().back(), EnumerationSaid(3, "STEP3"));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbEnumeration, OfAnIdentifierTooShortForTheProductIdThrowsAfterTheThirdStep) {
    With({Vendor("alpha", "scripted_all", "VID_ VID_1234&PID")});
    for (const char* id : {"VID_", "VID_1234&PID"}) {
        UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
        std::vector<DeviceInfo> devices{DeviceOf("one")};
        EXPECT_THROW(dispatcher.GetDeviceInfoByUsb(devices, Wide(id)), std::out_of_range) << id;
        EXPECT_THAT(devices, SizeIs(1));
        EXPECT_EQ(TakeLines().back(), EnumerationSaid(3, "STEP3"));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbEnumeration, GoesOnAfterOneThatThrew) {
    With({Vendor("alpha", "scripted_all", "VID VID_1234&PID_ABCD")});
    EXPECT_THROW(Enumerate("VID"), std::out_of_range);
    EXPECT_EQ(Enumerate(kId), 0);
}

TEST_F(UsbEnumeration, OfSeveralThreadsIsIndependent) {
    UsbConnInterface& dispatcher = With({Alpha(), Beta()});
    AddDevices(3);
    ScriptedModule("scripted_all_b").AddDevice(VendorDeviceOf("beta"));
    RecordingLog::Discard();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&dispatcher, number] {
            for (int round = 0; round < 100; ++round) {
                std::vector<DeviceInfo> devices;
                const bool first = number % 2 == 0;
                EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, Wide(first ? kId : kOtherId)), 0);
                EXPECT_THAT(devices, SizeIs(first ? 3 : 1));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
