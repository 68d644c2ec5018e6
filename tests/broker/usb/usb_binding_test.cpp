// SPDX-License-Identifier: Apache-2.0

// How the USB dispatcher's tables come about: the vendors', and that of the hardware identifiers.

#include <atomic>

#include "tests/broker/usb/usb_support.h"
#include "tests/support/in_threads.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;

class UsbBinding : public UsbTest {
protected:
    static UsbConnInterface& It() { return UsbConnInterface::GetInstance(); }
    static Lines Empty(const std::string& operation) {
        return {Said(4, "vendorList is empty. DeleteAllVendor", operation)};
    }
    static Lines NothingBound(const std::string& productId) {
        return Lines({Said(4, "pGetDeviceInfoByUsb is nullptr, err:", "GetDeviceFunc"),
                      Said(4, "pPrinterUSBNetConfigEvent is nullptr, err:", "GetDeviceFunc"),
                      Said(4, "pGetUSBWifiScan is nullptr, err:", "GetDeviceFunc")}) +
               BindingLines(productId);
    }

    // What every operation returns.
    static std::vector<int> EveryResult(const std::string& model = "alpha") {
        std::vector<WifiConfigInfo> networks;
        return {Enumerate(kId), It().GetUSBWifiScan(DeviceOf(model), networks, 0),
                It().PrinterUSBNetConfigEvent(DeviceOf(model), NetworkOf("office"))};
    }

    // The calls that reached a module.
    static std::size_t CallsOf(const std::string& moduleName) {
        return ScriptedModule(moduleName).Calls().size();
    }
};

TEST_F(UsbBinding, HappensOnceWhenManyThreadsComeFirst) {
    ScriptedVendors::Support({Alpha()});
    std::atomic<int> succeeded{0};
    InThreads(8, [&](int) { succeeded += Enumerate(kId) == 0 ? 1 : 0; });
    EXPECT_EQ(succeeded, 8);
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all",
                            "GetCurrentSupportList"));
}

TEST_F(UsbBinding, HappensOnTheFirstCallAndReadsTheListTwice) {
    ScriptedVendors::Support({Alpha()});
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
    EXPECT_EQ(&It(), &It());
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all",
                            "GetCurrentSupportList"));
    EXPECT_EQ(TakeLines(), BindingLines("alpha"));
    EXPECT_THAT(EveryResult(), ElementsAre(0, 0, 0));
    EXPECT_EQ(ScriptedVendors::Requests().size(), 3u);
}

TEST_F(UsbBinding, AsksForTheModuleOfTheVendorsName) {
    ScriptedVendors::Support({{"zeta", "r1", "r2", kId, "scripted_all", "scripted_none"},
                              {"alpha", "r1", "r2", kOtherId, "scripted_all_b", "scripted_none"}});
    It();
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all",
                            "GetDeviceHandle scripted_all_b", "GetCurrentSupportList"));
    EXPECT_EQ(TakeLines(), BindingLines("zeta") + BindingLines("alpha"));
}

TEST_F(UsbBinding, IgnoresTheResultOfTheListsReading) {
    ScriptedVendors::Support({Alpha()}, -5);
    EXPECT_THAT(EveryResult(), ElementsAre(0, 0, 0));
}

TEST_F(UsbBinding, LooksForTheWifiScanLast) {
    ScriptedVendors::Support({Vendor("alpha", "scripted_none", kId)});
    It();
    EXPECT_EQ(TakeLines(), NothingBound("alpha"));
    EXPECT_THAT(EveryResult(), ElementsAre(kNothingToCall, kNothingToCall, kNothingToCall));
}

struct Missing {
    std::string name;
    std::string message;
    std::vector<int> results;
};

void PrintTo(const Missing& missing, std::ostream* out) {
    *out << missing.name;
}

class UsbBindingWithout : public UsbBinding, public testing::WithParamInterface<Missing> {};

TEST_P(UsbBindingWithout, OneEntryPointLogsThatOneAndBindsTheOthers) {
    ScriptedVendors::Support({AlphaWithout(GetParam().name)});
    It();
    EXPECT_EQ(TakeLines(),
              Lines({Said(4, GetParam().message, "GetDeviceFunc")}) + BindingLines("alpha"));
    ScriptedModule("scripted_without_" + GetParam().name)
        .Script("result GetDeviceInfoByUsb 11\nresult USBWifiScan 12");
    EXPECT_EQ(EveryResult(), GetParam().results);
}

INSTANTIATE_TEST_SUITE_P(
    Each, UsbBindingWithout,
    testing::Values(
        Missing{"GetDeviceInfoByUsb", "pGetDeviceInfoByUsb is nullptr, err:", {-1, 12, 0}},
        Missing{"USBWifiScan", "pGetUSBWifiScan is nullptr, err:", {11, kNothingToCall, 0}},
        Missing{"PrinterUSBNetConfigEvent",
                "pPrinterUSBNetConfigEvent is nullptr, err:",
                {11, 12, kNothingToCall}}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(UsbBinding, PassesOverAVendorWithoutAModuleButNotItsIdentifiers) {
    With({Vendor("alpha", "no_such_module", kId), Beta()});
    EXPECT_EQ(Enumerate(kId), kNothingToCall);
    EXPECT_EQ(TakeLines().back(), EnumerationSaid(4, "call Func map find fail, err:"));
    EXPECT_EQ(Enumerate(kOtherId), 0);
}

TEST_F(UsbBinding, OfAListWhoseVendorsAreAllPassedOverStillCounts) {
    ScriptedVendors::Support({Vendor("alpha", "no_such_module", kId)});
    It();
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(EveryResult(), ElementsAre(kNothingToCall, kNothingToCall, kNothingToCall));
    EXPECT_TRUE(It().Init());
}

TEST_F(UsbBinding, KeepsTheFirstVendorOfAProductIdAndTheIdentifiersOfBoth) {
    With({Alpha(), Vendor("alpha", "scripted_all_b", kOtherId)});
    EXPECT_EQ(Enumerate(kId), 0);
    EXPECT_EQ(Enumerate(kOtherId), 0);
    EXPECT_EQ(CallsOf("scripted_all"), 2u);
    EXPECT_EQ(CallsOf("scripted_all_b"), 0u);
}

TEST_F(UsbBinding, KeepsTheFirstVendorOfAnIdentifier) {
    With({Vendor("zeta", "scripted_all", std::string(kId) + " " + kId),
          Vendor("alpha", "scripted_all_b", std::string(kOtherId) + " " + kId)});
    EXPECT_EQ(Enumerate(kId), 0);
    EXPECT_EQ(CallsOf("scripted_all"), 1u);
    EXPECT_EQ(Enumerate(kOtherId), 0);
    EXPECT_EQ(CallsOf("scripted_all_b"), 1u);
}

TEST_F(UsbBinding, CutsTheListAtBlanksHoweverManyThereAre) {
    With({Vendor("alpha", "scripted_all", "  VID_1234&PID_0001  VID_1234&PID_0002 ")});
    EXPECT_EQ(Enumerate("VID_1234&PID_0001"), 0);
    EXPECT_EQ(Enumerate("VID_1234&PID_0002"), 0);
    for (const char* none : {"", " ", "VID_1234&PID_0002 ", " VID_1234&PID_0001",
                             "  VID_1234&PID_0001  VID_1234&PID_0002 "}) {
        EXPECT_EQ(Enumerate(none), kNothingToCall) << none;
    }
}

TEST_F(UsbBinding, CutsAtNothingButTheBlank) {
    const std::string withOther = "VID_1234&PID_0001\tVID_1234&PID_0002\nVID\v\f\r";
    With({Vendor("alpha", "scripted_all", withOther + " VID_1234&PID_0003")});
    EXPECT_EQ(Enumerate(withOther), 0);
    EXPECT_EQ(Enumerate("VID_1234&PID_0003"), 0);
    EXPECT_EQ(Enumerate("VID_1234&PID_0001"), kNothingToCall);
}

TEST_F(UsbBinding, TellsIdentifiersApartByteForByte) {
    With({Vendor("alpha", "scripted_all", "VID_1234&PID_abcd"),
          Vendor("beta", "scripted_all_b", "VID_1234&PID_ABCD VID_1234&PID_ABC")});
    EXPECT_EQ(Enumerate("VID_1234&PID_abcd"), 0);
    EXPECT_EQ(CallsOf("scripted_all"), 1u);
    EXPECT_EQ(CallsOf("scripted_all_b"), 0u);
    EXPECT_EQ(Enumerate("VID_1234&PID_ABCD"), 0);
    EXPECT_EQ(Enumerate("VID_1234&PID_ABC"), 0);
    EXPECT_EQ(CallsOf("scripted_all_b"), 2u);
    EXPECT_EQ(Enumerate("vid_1234&pid_abcd"), kNothingToCall);
}

TEST_F(UsbBinding, WithoutAnyVendorIsLoggedOnce) {
    It();
    EXPECT_EQ(TakeLines(), Empty("GetDeviceFunc"));
    EXPECT_THAT(ScriptedVendors::Requests(), ElementsAre("GetCurrentSupportList"));
    EXPECT_THAT(EveryResult(), ElementsAre(kNotInitialised, kNotInitialised, kNotInitialised));
}

// How a list that has no identifiers looks.
class UsbBindingWithoutIdentifiers : public UsbBinding,
                                     public testing::WithParamInterface<const char*> {};

TEST_P(UsbBindingWithoutIdentifiers, LeavesEveryOperationRefusedAndSaysNothingOfIt) {
    ScriptedVendors::Support({Alpha(), Vendor("beta", "scripted_all_b", GetParam()),
                              Vendor("gamma", "scripted_all_c", kOtherId)});
    It();
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + BindingLines("beta") + BindingLines("gamma"));
    EXPECT_THAT(EveryResult(), ElementsAre(kNotInitialised, kNotInitialised, kNotInitialised));
    EXPECT_FALSE(It().Init());
    EXPECT_THAT(EveryResult("gamma"),
                ElementsAre(kNotInitialised, kNotInitialised, kNotInitialised));
    EXPECT_EQ(CallsOf("scripted_all"), 0u);
}

TEST_P(UsbBindingWithoutIdentifiers, KeepsTheIdentifiersThatCameBefore) {
    With({Alpha(), Vendor("beta", "scripted_all_b", GetParam()),
          Vendor("gamma", "scripted_all_c", kOtherId)});
    // Another vendor claims what alpha had by then: too late. What gamma had, is still free.
    ScriptedVendors::Support(
        {Vendor("delta", "scripted_all_b", std::string(kId) + ' ' + kOtherId)});
    ASSERT_TRUE(It().Init());
    EXPECT_EQ(Enumerate(kId), 0);
    EXPECT_EQ(CallsOf("scripted_all"), 1u);
    EXPECT_EQ(Enumerate(kOtherId), 0);
    EXPECT_EQ(CallsOf("scripted_all_b"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Each, UsbBindingWithoutIdentifiers, testing::Values("", " ", "    "),
                         [](const auto& instance) {
                             return std::to_string(std::string(instance.param).size()) + "Blanks";
                         });

TEST_F(UsbBinding, IsTriedAgainByInit) {
    EXPECT_FALSE(It().Init());
    EXPECT_EQ(TakeLines(), Empty("GetDeviceFunc") + Empty("GetDeviceFunc"));
    EXPECT_EQ(Enumerate(kId), kNotInitialised);
    TakeLines();
    ScriptedVendors::Support({Alpha()});
    EXPECT_TRUE(It().Init());
    EXPECT_EQ(TakeLines(), BindingLines("alpha"));
    EXPECT_THAT(EveryResult(), ElementsAre(0, 0, 0));
}

TEST_F(UsbBinding, AgainWithAnEmptyListChangesNothing) {
    With({Alpha()});
    ScriptedVendors::Support({});
    EXPECT_FALSE(It().Init());
    EXPECT_EQ(TakeLines(), Empty("GetDeviceFunc"));
    EXPECT_THAT(EveryResult(), ElementsAre(0, 0, 0));
}

TEST_F(UsbBinding, AgainWithAVendorWithoutIdentifiersChangesNoFlag) {
    With({Alpha()});
    ScriptedVendors::Support({Vendor("beta", "scripted_all_b", " ")});
    EXPECT_FALSE(It().Init());
    EXPECT_THAT(EveryResult(), ElementsAre(0, 0, 0));
    EXPECT_THAT(EveryResult("beta"), ElementsAre(0, 0, 0));
}

TEST_F(UsbBinding, AgainAddsNewVendorsAndKeepsThoseItHas) {
    With({Alpha()});
    ScriptedVendors::Support({Vendor("alpha", "scripted_all_c", kId), Beta()});
    EXPECT_TRUE(It().Init());
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + BindingLines("beta"));
    EXPECT_EQ(Enumerate(kId), 0);
    EXPECT_EQ(Enumerate(kOtherId), 0);
    EXPECT_EQ(CallsOf("scripted_all"), 1u);
    EXPECT_EQ(CallsOf("scripted_all_b"), 1u);
    EXPECT_EQ(CallsOf("scripted_all_c"), 0u);
}

// The list that is read for the identifiers may be empty when that for the vendors was not.
TEST_F(UsbBinding, OfAListThatEmptiesInBetweenIsLoggedUnderTheIdentifiers) {
    ScriptedVendors::Support({Alpha()});
    RecordingLog::OnLine([](const RecordingLog::Line& line) {
        if (line.text.starts_with(L"productId")) {
            ScriptedVendors::Support({});
        }
    });
    It();
    RecordingLog::OnLine({});
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + Empty("GetUsbItemMap"));
    EXPECT_THAT(EveryResult(), ElementsAre(kNotInitialised, kNotInitialised, kNotInitialised));
}

TEST_F(UsbBinding, OfTenThousandIdentifiersFindsEach) {
    std::string list;
    for (int product = 0; product < 10000; ++product) {
        char id[32];
        std::snprintf(id, sizeof id, "VID_1234&PID_%04X ", static_cast<unsigned>(product));
        list += id;
    }
    With({Vendor("alpha", "scripted_all", list)});
    for (const char* id : {"VID_1234&PID_0000", "VID_1234&PID_1388", "VID_1234&PID_270F"}) {
        EXPECT_EQ(Enumerate(id), 0) << id;
    }
    EXPECT_EQ(Enumerate("VID_1234&PID_2710"), kNothingToCall);
}

}  // namespace
