// SPDX-License-Identifier: Apache-2.0

// The networks that a printer on USB sees, and putting it on one of them.

#include <cmath>
#include <cstring>

#include "tests/broker/usb/usb_support.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class UsbWifiScan : public UsbTest {
protected:
    static std::string Step(int level, const std::string& message) {
        return Said(level, message, "GetUSBWifiScan");
    }
    static Lines ScanBegins(const std::string& model) {
        return {Step(3, "STEP1"), Step(3, "STEP2"), Step(1, "modeid:" + model), Step(3, "STEP3"),
                Step(3, "STEP4")};
    }
    // The eight lines of a record that is appended to `before` others.
    static Lines Appends(const std::string& ssid, const std::string& rssi, int before) {
        const char* const conversion = "DiscoverBasic::GetDiscoverWifoConfigInfo";
        return {Step(3, "STEP...add1"),
                LineIs(3, "rssi = " + rssi, conversion),
                LineIs(3, "memcpy_s1 ret = 0", conversion),
                LineIs(3, "memcpy_s2 ret = 0", conversion),
                Step(3, "STEP.....add2"),
                Step(3, "STEP.....add2 " + std::to_string(before)),
                Step(3, "STEP.....add3"),
                Step(3, "ssid" + ssid)};
    }
    static Lines ScanEnds(int total) {
        return {Step(3, "STEP5"), Step(3, "STEP6" + std::to_string(total))};
    }

    static ScriptedVendor::UsbWifiScan Asked() {
        const ScriptedVendor::Call call = ScriptedModule("scripted_all").Calls().back();
        EXPECT_STREQ(call.entryPoint, "USBWifiScan");
        ScriptedVendor::UsbWifiScan question{};
        EXPECT_EQ(call.size, sizeof question);
        std::memcpy(&question, call.bytes, sizeof question);
        return question;
    }
    static void AddNetworks(int count) {
        for (int number = 0; number < count; ++number) {
            ScriptedModule("scripted_all")
                .AddNetwork(VendorNetworkOf("network " + std::to_string(number)));
        }
    }
    static int Scan(std::vector<WifiConfigInfo>& networks, const std::string& model = "alpha",
                    int option = 0) {
        return Dispatcher::GetInstance().GetUSBWifiScan(DeviceOf(model), networks, option);
    }
    static int Scan(const std::string& model = "alpha") {
        std::vector<WifiConfigInfo> networks;
        return Scan(networks, model);
    }
};

TEST_F(UsbWifiScan, LogsEachStepAndAppendsInTheVendorsOrder) {
    With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddNetwork(VendorNetworkOf("office"));
    alpha.AddNetwork(VendorNetworkOf("home"));
    alpha.AddNetwork(VendorNetworkOf("office"));
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(Scan(networks), 0);
    EXPECT_EQ(TakeLines(), ScanBegins("alpha") + Lines({Step(1, "call Func OK3")}) +
                               Appends("office", "-41.5", 0) + Appends("home", "-41.5", 1) +
                               Appends("office", "-41.5", 2) + ScanEnds(3));
    ASSERT_THAT(networks, SizeIs(3));
    EXPECT_EQ(BytesOf(networks[0]), BytesOf(NetworkOf("office")));
    EXPECT_EQ(BytesOf(networks[1]), BytesOf(NetworkOf("home")));
    EXPECT_EQ(BytesOf(networks[2]), BytesOf(NetworkOf("office")));
}

TEST_F(UsbWifiScan, SaysThatItAsksBeforeItDoes) {
    With({Alpha()});
    const auto work = [] { Scan(); };
    EXPECT_THAT(CallsAtTheLine("STEP4", CallsOfAlpha, work), ElementsAre(IsEmpty()));
    EXPECT_THAT(CallsAtTheLine("call Func OK", CallsOfAlpha, work), ElementsAre(SizeIs(2)));
}

TEST_F(UsbWifiScan, GivesTheVendorACopyOfTheDeviceAndTheOptionAsItStands) {
    With({Alpha()});
    const DeviceInfo device = DeviceOf("alpha");
    const std::string before = BytesOf(device);
    for (const int option : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        std::vector<WifiConfigInfo> networks;
        EXPECT_EQ(Dispatcher::GetInstance().GetUSBWifiScan(device, networks, option), 0);
        const ScriptedVendor::UsbWifiScan question = Asked();
        EXPECT_EQ(BytesOf(question.device), before);
        EXPECT_EQ(question.option, option);
        EXPECT_EQ(question.count, 0);
        EXPECT_NE(ScriptedModule("scripted_all").Calls().back().argument, &device);
    }
    EXPECT_EQ(BytesOf(device), before);
}

TEST_F(UsbWifiScan, AppendsToWhatIsThereAndCountsIt) {
    With({Alpha()});
    AddNetworks(1);
    std::vector<WifiConfigInfo> networks{NetworkOf("one"), NetworkOf("two")};
    EXPECT_EQ(Scan(networks), 0);
    EXPECT_EQ(TakeLines(), ScanBegins("alpha") + Lines({Step(1, "call Func OK1")}) +
                               Appends("network 0", "-41.5", 2) + ScanEnds(3));
    ASSERT_THAT(networks, SizeIs(3));
    EXPECT_EQ(BytesOf(networks[1]), BytesOf(NetworkOf("two")));
    EXPECT_STREQ(networks[2].ssid, "network 0");
}

TEST_F(UsbWifiScan, TerminatesTextsThatFillTheirFields) {
    With({Alpha()});
    VendorSdk::WifiConfigInfo full;
    std::memset(&full, 'x', sizeof full);
    full.rssi = -0.0F;
    ScriptedModule("scripted_all").AddNetwork(full);
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(Scan(networks), 0);
    EXPECT_EQ(std::string(networks.at(0).ssid, 128), std::string(127, 'x') + '\0');
    EXPECT_EQ(std::string(networks.at(0).pwd, 32), std::string(31, 'x') + '\0');
    EXPECT_TRUE(std::signbit(networks.at(0).rssi));
    EXPECT_EQ(TakeLines(), ScanBegins("alpha") + Lines({Step(1, "call Func OK1")}) +
                               Appends(std::string(127, 'x'), "-0", 0) + ScanEnds(1));
}

TEST_F(UsbWifiScan, TakesUpTo128Records) {
    With({Alpha()});
    AddNetworks(128);
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(Scan(networks), 0);
    ASSERT_THAT(networks, SizeIs(128));
    EXPECT_STREQ(networks[127].ssid, "network 127");
    Lines expected = ScanBegins("alpha") + Lines({Step(1, "call Func OK128")});
    for (int number = 0; number < 128; ++number) {
        expected = expected + Appends("network " + std::to_string(number), "-41.5", number);
    }
    EXPECT_EQ(TakeLines(), expected + ScanEnds(128));
}

TEST_F(UsbWifiScan, TakesNoneOfACountThatIsNoCount) {
    With({Alpha()});
    AddNetworks(128);
    for (const int count : {0, -1, 129, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all").Script("count USBWifiScan " + std::to_string(count));
        std::vector<WifiConfigInfo> networks{NetworkOf("one")};
        EXPECT_EQ(Scan(networks), 0);
        EXPECT_THAT(networks, SizeIs(1));
        EXPECT_EQ(TakeLines(), ScanBegins("alpha") +
                                   Lines({Step(1, "call Func OK" + std::to_string(count))}) +
                                   ScanEnds(1));
    }
}

TEST_F(UsbWifiScan, ReturnsTheVendorsFailureUnchangedAndTakesNothing) {
    With({Alpha()});
    AddNetworks(2);
    for (const int result : {5, 1, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all").Script("result USBWifiScan " + std::to_string(result));
        std::vector<WifiConfigInfo> networks{NetworkOf("one")};
        EXPECT_EQ(Scan(networks), result);
        EXPECT_THAT(networks, SizeIs(1));
        EXPECT_EQ(TakeLines(), ScanBegins("alpha") +
                                   Lines({Step(4, "call Func fail, err:" + std::to_string(result)),
                                          Step(3, "STEP61")}));
    }
}

TEST_F(UsbWifiScan, GoesToTheVendorOfTheModelWhateverItsIdentifiers) {
    With({Alpha(), Beta()});
    ScriptedModule("scripted_all_b").Script("result USBWifiScan 41");
    EXPECT_EQ(Scan("beta"), 41);
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbWifiScan, WithoutAVendorForTheModelAsksNobody) {
    With({Alpha()});
    for (const char* model : {"beta", "Alpha", "alph", "alphab", "alpha ", ""}) {
        std::vector<WifiConfigInfo> networks{NetworkOf("one")};
        EXPECT_EQ(Scan(networks, model), kNothingToCall) << model;
        EXPECT_THAT(networks, SizeIs(1));
        EXPECT_THAT(TakeLines(), ElementsAre(Step(3, "STEP1"), Step(3, "STEP2"),
                                             Step(1, std::string("modeid:") + model),
                                             Step(4, "call Func map find fail:")));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbWifiScan, WithoutTheVendorsEntryPointAsksNobody) {
    With({AlphaWithout("USBWifiScan")});
    EXPECT_EQ(Scan(), kNothingToCall);
    EXPECT_THAT(TakeLines(),
                ElementsAre(Step(3, "STEP1"), Step(3, "STEP2"), Step(1, "modeid:alpha"),
                            Step(4, "call pFunc is nullptr - fail:")));
    EXPECT_EQ(Enumerate(kId), 0);
}

TEST_F(UsbWifiScan, WithoutVendorsIsRefused) {
    With({});
    EXPECT_EQ(Scan(), kNotInitialised);
    EXPECT_THAT(TakeLines(), ElementsAre(Step(3, "STEP1"), Step(4, "NOINITOK")));
}

TEST_F(UsbWifiScan, ReadsAModelWithoutATerminatorOnToTheEndOfTheRecordAndNoFurther) {
    const std::string endless = std::string(32, 'M') + std::string(128, 'x');
    With({Vendor(endless, "scripted_all", kId)});
    Guarded<DeviceInfo> device;
    std::memset(&*device, 'x', sizeof *device);
    SetField(device->modelID, std::string(32, 'M'));
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(Dispatcher::GetInstance().GetUSBWifiScan(*device, networks, 0), 0);
    EXPECT_EQ(TakeLines().at(2), Step(1, "modeid:" + endless));
    EXPECT_EQ(Dispatcher::GetInstance().PrinterUSBNetConfigEvent(*device, NetworkOf("office")), 0);
}

class UsbNetConfig : public UsbTest {
protected:
    static std::string Step(int level, const std::string& message) {
        return Said(level, message, "PrinterUSBNetConfigEvent");
    }
    static ScriptedVendor::UsbNetConfig Given() {
        const ScriptedVendor::Call call = ScriptedModule("scripted_all").Calls().back();
        EXPECT_STREQ(call.entryPoint, "PrinterUSBNetConfigEvent");
        ScriptedVendor::UsbNetConfig given{};
        EXPECT_EQ(call.size, sizeof given);
        std::memcpy(&given, call.bytes, sizeof given);
        return given;
    }
    static int Configure(const std::string& model = "alpha") {
        return Dispatcher::GetInstance().PrinterUSBNetConfigEvent(DeviceOf(model),
                                                                  NetworkOf("office"));
    }
};

TEST_F(UsbNetConfig, GivesTheVendorEveryByteOfBothAndLogsNoPassPhrase) {
    With({Alpha()});
    EXPECT_EQ(Configure(), 0);
    const ScriptedVendor::UsbNetConfig given = Given();
    EXPECT_EQ(BytesOf(given.device), BytesOf(DeviceOf("alpha")));
    EXPECT_EQ(BytesOf(given.network), BytesOf(NetworkOf("office")));
    EXPECT_THAT(TakeLines(), ElementsAre(Step(1, "modeid:alpha"), Step(1, "call Func OK")));
}

TEST_F(UsbNetConfig, GivesTheVendorCopies) {
    With({Alpha()});
    const DeviceInfo device = DeviceOf("alpha");
    const WifiConfigInfo network = NetworkOf("office");
    EXPECT_EQ(Dispatcher::GetInstance().PrinterUSBNetConfigEvent(device, network), 0);
    const ScriptedVendor::Call call = ScriptedModule("scripted_all").Calls().back();
    EXPECT_NE(call.argument, &device);
    EXPECT_NE(call.second, &network);
}

TEST_F(UsbNetConfig, TerminatesTextsThatFillTheirFields) {
    With({Alpha()});
    WifiConfigInfo network;
    std::memset(&network, 'x', sizeof network);
    const std::string before = BytesOf(network);
    EXPECT_EQ(Dispatcher::GetInstance().PrinterUSBNetConfigEvent(DeviceOf("alpha"), network), 0);
    const ScriptedVendor::UsbNetConfig given = Given();
    EXPECT_EQ(std::memcmp(&given.network.rssi, &network.rssi, sizeof network.rssi), 0);
    EXPECT_EQ(std::string(given.network.ssid, 128), std::string(127, 'x') + '\0');
    EXPECT_EQ(std::string(given.network.pwd, 32), std::string(31, 'x') + '\0');
    EXPECT_EQ(BytesOf(network), before);
}

TEST_F(UsbNetConfig, FoldsEveryFailureOfTheVendorsIntoOne) {
    With({Alpha()});
    for (const int result : {5, 1, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all")
            .Script("result PrinterUSBNetConfigEvent " + std::to_string(result));
        EXPECT_EQ(Configure(), kVendorFailed);
        EXPECT_THAT(TakeLines(), ElementsAre(Step(1, "modeid:alpha"),
                                             Step(4, "call Func Fail" + std::to_string(result))));
    }
}

TEST_F(UsbNetConfig, GoesToTheVendorOfTheModel) {
    With({Alpha(), Beta()});
    EXPECT_EQ(Configure("beta"), 0);
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all_b").CallNames(),
                ElementsAre("PrinterUSBNetConfigEvent"));
}

TEST_F(UsbNetConfig, WithoutAVendorForTheModelAsksNobody) {
    With({Alpha()});
    for (const char* model : {"beta", "Alpha", "alph", "alphab", ""}) {
        EXPECT_EQ(Configure(model), kNothingToCall) << model;
        EXPECT_THAT(TakeLines(), ElementsAre(Step(1, std::string("modeid:") + model),
                                             Step(4, "call Func map find fail:")));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(UsbNetConfig, WithoutTheVendorsEntryPointAsksNobody) {
    With({AlphaWithout("PrinterUSBNetConfigEvent")});
    EXPECT_EQ(Configure(), kNothingToCall);
    EXPECT_THAT(TakeLines(),
                ElementsAre(Step(1, "modeid:alpha"), Step(4, "call pFunc is nullptr - fail:")));
}

TEST_F(UsbNetConfig, WithoutVendorsIsRefusedAndSaysNothingElse) {
    With({});
    EXPECT_EQ(Configure(), kNotInitialised);
    EXPECT_THAT(TakeLines(), ElementsAre(Step(4, "NOINITOK")));
}

}  // namespace
