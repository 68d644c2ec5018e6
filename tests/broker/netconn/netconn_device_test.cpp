// SPDX-License-Identifier: Apache-2.0

// The operations of the access-point family that carry a record.

#include <cstring>

#include "tests/broker/netconn/netconn_support.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kResults[] = {0, 1, -1, -2, -3, 2147483647, -2147483647 - 1};

class PrinterAPNetConfigEventTest : public NetConnTest {
protected:
    static constexpr char kName[] = "PrinterAPNetConfigEvent";

    // What the vendor was given last.
    static VendorSdk::WifiConfigInfo Given() {
        const ScriptedVendor::Call call = ScriptedModule("scripted_all").Calls().back();
        EXPECT_STREQ(call.entryPoint, kName);
        VendorSdk::WifiConfigInfo given;
        EXPECT_EQ(call.size, sizeof given);
        std::memcpy(&given, call.bytes, sizeof given);
        return given;
    }
};

TEST_F(PrinterAPNetConfigEventTest, GivesTheVendorEveryByte) {
    NetConnInterface& dispatcher = With({Alpha()});
    const WifiConfigInfo network = NetworkOf("office");
    const std::string before = BytesOf(network);
    EXPECT_EQ(dispatcher.PrinterAPNetConfigEvent(network), 0);
    EXPECT_EQ(BytesOf(Given()), before);
    EXPECT_EQ(BytesOf(network), before);
    EXPECT_NE(ScriptedModule("scripted_all").Calls().back().argument, &network);
    EXPECT_THAT(TakeLines(), ElementsAre(Said(1, "call Func OK", kName)));
}

TEST_F(PrinterAPNetConfigEventTest, TerminatesTextsThatFillTheirFields) {
    NetConnInterface& dispatcher = With({Alpha()});
    WifiConfigInfo network{};
    SetField(network.ssid, std::string(128, 'n'));
    SetField(network.pwd, std::string(32, 'p'));
    const std::string before = BytesOf(network);
    EXPECT_EQ(dispatcher.PrinterAPNetConfigEvent(network), 0);
    const VendorSdk::WifiConfigInfo given = Given();
    EXPECT_EQ(std::string(given.ssid, sizeof given.ssid), std::string(127, 'n') + '\0');
    EXPECT_EQ(std::string(given.pwd, sizeof given.pwd), std::string(31, 'p') + '\0');
    EXPECT_EQ(BytesOf(network), before);
}

TEST_F(PrinterAPNetConfigEventTest, ReturnsTheVendorsResultUnchanged) {
    NetConnInterface& dispatcher = With({Alpha()});
    for (const int result : kResults) {
        ScriptedModule("scripted_all")
            .Script("result PrinterAPNetConfigEvent " + std::to_string(result));
        EXPECT_EQ(dispatcher.PrinterAPNetConfigEvent(NetworkOf("office")), result);
        const std::string outcome =
            result == 0 ? Said(1, "call Func OK", kName)
                        : Said(4, "call Func fail, err:" + std::to_string(result), kName);
        EXPECT_THAT(TakeLines(), ElementsAre(outcome));
    }
}

class GetDeviceInfoByNetTest : public NetConnTest {
protected:
    static constexpr char kName[] = "GetDeviceInfoByNet";
};

TEST_F(GetDeviceInfoByNetTest, FillsInTheVendorsRecord) {
    NetConnInterface& dispatcher = With({Alpha()});
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("model"));
    DeviceInfo device;
    std::memset(&device, 0x5A, sizeof device);
    EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), 0);
    EXPECT_EQ(BytesOf(device), BytesOf(DeviceOf("model")));
    EXPECT_NE(ScriptedModule("scripted_all").Calls().back().argument, &device);
    EXPECT_THAT(TakeLines(), ElementsAre(Said(1, "call Func OK", kName)));
}

TEST_F(GetDeviceInfoByNetTest, LeavesTheCallersRecordUntouchedWhenTheVendorFails) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("model"));
    for (const int result : kResults) {
        if (result == 0) {
            continue;
        }
        alpha.Script("result GetDeviceInfoByNet " + std::to_string(result));
        DeviceInfo device;
        std::memset(&device, 0x5A, sizeof device);
        EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), result);
        EXPECT_EQ(BytesOf(device), std::string(sizeof device, 0x5A));
        EXPECT_THAT(TakeLines(),
                    ElementsAre(Said(4, "call Func fail, err:" + std::to_string(result), kName)));
    }
}

TEST_F(GetDeviceInfoByNetTest, LeavesTheCallersRecordUntouchedWithoutAVendor) {
    DeviceInfo device;
    std::memset(&device, 0x5A, sizeof device);
    NetConnInterface& dispatcher = With({});
    EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), kNotInitialised);
    ScriptedVendors::Support({AlphaWithout(kName)});
    ASSERT_TRUE(dispatcher.Init());
    EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), kNothingToCall);
    ScriptedModule("scripted_without_GetDeviceInfoByNet").Script("result IsConnectCurrentWifiAP 1");
    EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), kNothingToCall);
    EXPECT_EQ(BytesOf(device), std::string(sizeof device, 0x5A));
}

class IsLocalAreaNetworkOKTest : public NetConnTest {
protected:
    static constexpr char kName[] = "IsLocalAreaNetworkOK";
};

TEST_F(IsLocalAreaNetworkOKTest, GoesToTheVendorOfTheModelWithoutAskingWhoIsConnected) {
    NetConnInterface& dispatcher = With({Alpha(), Beta()});
    ScriptedModule("scripted_all_b").Script("result IsLocalAreaNetworkOK 41");
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf("beta")), 41);
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all_b").CallNames(), ElementsAre(kName));
}

TEST_F(IsLocalAreaNetworkOKTest, ReturnsTheVendorsResultUnchanged) {
    NetConnInterface& dispatcher = With({Alpha()});
    for (const int result : kResults) {
        ScriptedModule("scripted_all")
            .Script("result IsLocalAreaNetworkOK " + std::to_string(result));
        EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf("alpha")), result);
        // Here the word has a capital letter and no colon.
        const std::string outcome = result == 0
                                        ? Said(1, "call Func OK", kName)
                                        : Said(4, "call Func Fail" + std::to_string(result), kName);
        EXPECT_THAT(TakeLines(), ElementsAre(outcome));
    }
}

TEST_F(IsLocalAreaNetworkOKTest, WithoutAVendorForTheModelAsksNobody) {
    NetConnInterface& dispatcher = With({Alpha()});
    for (const char* model : {"beta", "Alpha", "alph", "alphab", " alpha", ""}) {
        EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf(model)), kNothingToCall) << model;
        EXPECT_THAT(TakeLines(), ElementsAre(Said(4, "call Func map find fail:", kName)));
    }
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(IsLocalAreaNetworkOKTest, NamesTheVendorThatLacksIt) {
    NetConnInterface& dispatcher = With({AlphaWithout(kName)});
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf("alpha")), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(Said(4, "call pFunc is nullptr - fail:alpha", kName)));
}

TEST_F(IsLocalAreaNetworkOKTest, GivesTheVendorACopyOfEveryByte) {
    NetConnInterface& dispatcher = With({Vendor(std::string(32, 'M'), "scripted_all")});
    DeviceInfo device = DeviceOf(std::string(32, 'M'));
    SetField(device.modelID, std::string(32, 'M'));
    SetField(device.deviceSN, std::string(64, 'S'));
    SetField(device.extra1, "");
    const std::string before = BytesOf(device);
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(device), 0);
    const ScriptedVendor::Call call = ScriptedModule("scripted_all").Calls().at(0);
    EXPECT_NE(call.argument, &device);
    EXPECT_EQ(BytesOf(call), before);
    EXPECT_EQ(BytesOf(device), before);
}

TEST_F(IsLocalAreaNetworkOKTest, ReadsNoTextBeyondTheRecord) {
    const std::string endless = std::string(32, 'M') + std::string(128, 'x');
    NetConnInterface& dispatcher = With({Vendor(endless, "scripted_all")});
    Guarded<DeviceInfo> device;
    std::memset(&*device, 'x', sizeof *device);
    SetField(device->modelID, std::string(32, 'M'));
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(*device), 0);
}

TEST_F(IsLocalAreaNetworkOKTest, WithoutVendorsIsRefused) {
    NetConnInterface& dispatcher = With({});
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf("alpha")), kNotInitialised);
    EXPECT_THAT(TakeLines(), ElementsAre(Said(4, "NOINITOK", kName)));
}

TEST_F(IsLocalAreaNetworkOKTest, IsServedByAVendorThatHasNothingElse) {
    NetConnInterface& dispatcher = With({AlphaWithout("IsConnectCurrentWifiAP")});
    EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf("alpha")), 0);
}

}  // namespace
