// SPDX-License-Identifier: Apache-2.0

// Which vendor serves an operation: the one whose access point the host is joined to.

#include <functional>

#include "tests/broker/netconn/netconn_support.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;

// An operation that asks for the vendor, and what it says when the vendor lacks it.
struct Operation {
    std::string name;
    std::function<int(NetConnInterface&)> call;
    std::string missing = "pFunc is nullptr, err:";
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

class Choice : public NetConnTest, public testing::WithParamInterface<Operation> {
protected:
    static const std::string& Name() { return GetParam().name; }
    static int Call(NetConnInterface& dispatcher) { return GetParam().call(dispatcher); }

    // What comes before the vendor is chosen.
    static Lines Beginning() {
        if (Name() == "StartAPWifiScan") {
            return {SetLine("1")};
        }
        return Name() == "StopAPWifiScan" ? Lines{ClearLine()} : Lines{};
    }
    static Lines None() { return {Said(4, "call Func map find fail:", Name())}; }
    static Lines Success() { return {Said(1, "call Func OK", Name())}; }

    // The calls that a module received, up to that of the operation itself.
    static std::vector<std::string> CallsOf(const std::string& moduleName) {
        const ScriptedModule module(moduleName);
        module.AwaitCalls(Name().c_str(), 1);
        return module.CallNames();
    }
};

TEST_P(Choice, TakesTheFirstVendorThatSaysYesAndAsksNobodyAfterIt) {
    NetConnInterface& dispatcher = With({Beta(), Alpha()});
    EXPECT_EQ(Call(dispatcher), 0);
    EXPECT_EQ(TakeOwnLines(), Beginning() + Success());
    EXPECT_THAT(CallsOf("scripted_all"), ElementsAre("IsConnectCurrentWifiAP", Name()));
    EXPECT_THAT(ScriptedModule("scripted_all_b").Calls(), IsEmpty());
}

TEST_P(Choice, AsksInTheOrderOfTheProductIdsByteByByte) {
    NetConnInterface& dispatcher =
        With({Vendor("a", "scripted_all"), Vendor("\xFF", "scripted_all_b"),
              Vendor("Z", "scripted_all_c")});
    Answer("scripted_all", 7);
    Answer("scripted_all_c", -7);
    EXPECT_EQ(Call(dispatcher), 0);
    EXPECT_EQ(TakeOwnLines(),
              Beginning() +
                  Lines({ChooserSaid(3, "call Func ret =-7"), ChooserSaid(3, "call Func ret =7")}) +
                  Success());
    EXPECT_THAT(CallsOf("scripted_all_b"), ElementsAre("IsConnectCurrentWifiAP", Name()));
}

TEST_P(Choice, PassesOverAVendorThatCannotBeAsked) {
    NetConnInterface& dispatcher = With({AlphaWithout("IsConnectCurrentWifiAP"), Beta()});
    EXPECT_EQ(Call(dispatcher), 0);
    EXPECT_EQ(TakeOwnLines(),
              Beginning() + Lines({ChooserSaid(3, "pFunc is nullptr, err:")}) + Success());
    EXPECT_THAT(CallsOf("scripted_all_b"), ElementsAre("IsConnectCurrentWifiAP", Name()));
    EXPECT_THAT(ScriptedModule("scripted_without_IsConnectCurrentWifiAP").Calls(), IsEmpty());
}

TEST_P(Choice, OfNobodyWhenAllSayNo) {
    NetConnInterface& dispatcher = With({Alpha(), Beta()});
    Answer("scripted_all", 1);
    Answer("scripted_all_b", -2147483647 - 1);
    EXPECT_EQ(Call(dispatcher), kNothingToCall);
    EXPECT_EQ(TakeOwnLines(), Beginning() +
                                  Lines({ChooserSaid(3, "call Func ret =1"),
                                         ChooserSaid(3, "call Func ret =-2147483648"),
                                         ChooserSaid(4, "call Func all fail, err:")}) +
                                  None());
}

TEST_P(Choice, OfNobodyWhenNobodyCanBeAsked) {
    NetConnInterface& dispatcher = With({Vendor("alpha", "scripted_none")});
    EXPECT_EQ(Call(dispatcher), kNothingToCall);
    EXPECT_EQ(TakeOwnLines(), Beginning() +
                                  Lines({ChooserSaid(3, "pFunc is nullptr, err:"),
                                         ChooserSaid(4, "call Func all fail, err:")}) +
                                  None());
}

TEST_P(Choice, OfNobodyInAnEmptyTable) {
    NetConnInterface& dispatcher = With({Vendor("alpha", "no_such_module")});
    EXPECT_EQ(Call(dispatcher), kNothingToCall);
    EXPECT_EQ(TakeOwnLines(),
              Beginning() + Lines({ChooserSaid(4, "call Func all fail, err:")}) + None());
}

TEST_P(Choice, IsMadeAnewEachTime) {
    NetConnInterface& dispatcher = With({Alpha(), Beta()});
    EXPECT_EQ(Call(dispatcher), 0);
    CallsOf("scripted_all");
    Answer("scripted_all", 1);
    EXPECT_EQ(Call(dispatcher), 0);
    EXPECT_THAT(CallsOf("scripted_all_b"), ElementsAre("IsConnectCurrentWifiAP", Name()));
    Answer("scripted_all", 0);
    EXPECT_EQ(Call(dispatcher), 0);
    const ScriptedModule alpha("scripted_all");
    alpha.AwaitCalls(Name().c_str(), 2);
    EXPECT_THAT(alpha.CallNames(),
                ElementsAre("IsConnectCurrentWifiAP", Name(), "IsConnectCurrentWifiAP",
                            "IsConnectCurrentWifiAP", Name()));
}

// The start's line has words of its own for it, and so has IsLocalAreaNetworkOK.
TEST_P(Choice, OfAVendorThatLacksTheOperation) {
    NetConnInterface& dispatcher = With({AlphaWithout(Name()), Beta()});
    EXPECT_EQ(Call(dispatcher), kNothingToCall);
    EXPECT_EQ(TakeOwnLines(), Beginning() + Lines({Said(3, GetParam().missing, Name())}));
    EXPECT_THAT(ScriptedModule("scripted_all_b").Calls(), IsEmpty());
}

TEST_P(Choice, IsNotMadeWithoutVendors) {
    NetConnInterface& dispatcher = With({});
    EXPECT_EQ(Call(dispatcher), kNotInitialised);
    EXPECT_THAT(TakeOwnLines(), ElementsAre(Said(4, "NOINITOK", Name())));
}

TEST_P(Choice, BindsTheVendorsWithTheFirstCall) {
    ScriptedVendors::Support({Alpha()});
    EXPECT_EQ(Call(NetConnInterface::GetInstance()), 0);
    EXPECT_EQ(TakeOwnLines().front(), Said(3, "productIdalpha", "GetDeviceFunc"));
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all"));
}

INSTANTIATE_TEST_SUITE_P(
    Of, Choice,
    testing::Values(Operation{"StartAPWifiScan",
                              [](NetConnInterface& dispatcher) {
                                  return dispatcher.StartAPWifiScan({Application::OnNetwork, 1});
                              },
                              "call pFunc is nullptr, err:"},
                    Operation{
                        "StopAPWifiScan",
                        [](NetConnInterface& dispatcher) { return dispatcher.StopAPWifiScan(); }},
                    Operation{"PrinterAPNetConfigEvent",
                              [](NetConnInterface& dispatcher) {
                                  return dispatcher.PrinterAPNetConfigEvent(NetworkOf("office"));
                              }},
                    Operation{"GetDeviceInfoByNet",
                              [](NetConnInterface& dispatcher) {
                                  DeviceInfo device{};
                                  return dispatcher.GetDeviceInfoByNet(device);
                              }}),
    [](const auto& each) { return each.param.name; });

class Binding : public NetConnTest {};

TEST_F(Binding, OfTheModuleThatTheVendorsNameNames) {
    ScriptedVendors::Support({{"alpha", "", "", "", "scripted_all_b", "scripted_all"}});
    NetConnInterface::GetInstance();
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all_b"));
}

TEST_F(Binding, LogsEachEntryPointThatAVendorLacks) {
    ScriptedVendors::Support({Vendor("alpha", "scripted_none")});
    NetConnInterface::GetInstance();
    const char* const where = "GetDeviceFunc";
    EXPECT_THAT(TakeLines(), testing::UnorderedElementsAre(
                                 Said(4, "startApWifiScan is nullptr, err:", where),
                                 Said(4, "stopApWifiScan is nullptr, err:", where),
                                 Said(4, "printerApNetConfigEvent is nullptr, err:", where),
                                 Said(4, "isLocalAreaNetworkOK is nullptr, err:", where),
                                 Said(4, "getDeviceInfoByNet is nullptr, err:", where),
                                 Said(4, "isConnectCurrentWifiAp is nullptr, err:", where),
                                 Said(3, "productIdalpha", where)));
}

TEST_F(Binding, AgainWithInit) {
    NetConnInterface& dispatcher = With({});
    EXPECT_EQ(dispatcher.StopAPWifiScan(), kNotInitialised);
    EXPECT_FALSE(dispatcher.Init());
    ScriptedVendors::Support({Alpha()});
    EXPECT_TRUE(dispatcher.Init());
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    // What is bound stays bound when a later list is empty.
    ScriptedVendors::Support({});
    EXPECT_FALSE(dispatcher.Init());
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
}

TEST_F(Binding, SharesNothingWithTheScan) {
    With({Alpha()});
    ScriptedVendors::Support({});
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), kNotInitialised);
}

}  // namespace
