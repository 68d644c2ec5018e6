// SPDX-License-Identifier: Apache-2.0

// How the scan dispatcher's table of vendors comes about.

#include <atomic>
#include <thread>

#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kBinding[] = "ScanInterface::GetDeviceFunc";

class Binding : public BrokerTest {};

std::vector<std::string> EmptyListLines() {
    return {LineIs(4, "vendorList is empty. DeleteAllVendor", kBinding)};
}

TEST_F(Binding, HappensOnTheFirstCallAndNotBefore) {
    Support({Vendor("alpha", "scripted_all")});
    EXPECT_THAT(ScriptedVendors::Requests(), IsEmpty());
    EXPECT_THAT(TakeLines(), IsEmpty());
    ScanInterface::GetInstance();
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all"));
    EXPECT_EQ(TakeLines(), BindingLines("alpha"));
}

TEST_F(Binding, HappensOnceWhicheverLayerIsCalled) {
    Support({Vendor("alpha", "scripted_all")});
    const DeviceInfo device = DeviceOf("alpha");
    StopDeviceScan();
    DiscoverScanInterface::GetInstance().StopDeviceScan();
    GetDeviceConnectState(&device);
    DiscoverScanInterface::GetInstance().GetDeviceConnectState(device);
    ScanInterface::GetInstance().StopDeviceScan();
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all"));
}

TEST_F(Binding, OfTheFacadeComesAfterTheFacadesOwnLine) {
    Support({Vendor("alpha", "scripted_all")});
    DiscoverScanInterface::GetInstance();
    EXPECT_THAT(TakeLines(), IsEmpty());
    DiscoverScanInterface::GetInstance().StopDeviceScan();
    EXPECT_EQ(TakeLines(),
              Lines({LineIs(1, "Stop Device Scan", "DiscoverScanInterface::StopDeviceScan")}) +
                  BindingLines("alpha") +
                  Lines({LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
                         LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
                         LineIs(1, "call Func OK", "ScanInterface::StopDeviceScan")}));
}

TEST_F(Binding, HappensOnceWhenManyThreadsComeFirst) {
    Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    std::atomic<int> stopped{0};
    for (int count = 0; count < 8; ++count) {
        threads.emplace_back([&] {
            ++ready;
            while (ready < 8) {
                std::this_thread::yield();
            }
            stopped += ScanInterface::GetInstance().StopDeviceScan() == 0 ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(stopped, 8);
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all",
                            "GetDeviceHandle scripted_all_b"));
}

TEST_F(Binding, AsksForTheScanModuleInTheOrderOfTheList) {
    Support({{"zeta", "r1", "r2", "usb", "scripted_none", "scripted_all"},
             {"alpha", "r1", "r2", "usb", "scripted_none", "scripted_all_b"}});
    ScanInterface::GetInstance();
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_all",
                            "GetDeviceHandle scripted_all_b"));
    EXPECT_EQ(TakeLines(), BindingLines("zeta") + BindingLines("alpha"));
}

TEST_F(Binding, IgnoresTheResultOfTheListsReading) {
    Support({Vendor("alpha", "scripted_all")}, -5);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
}

TEST_F(Binding, LogsEveryEntryPointThatAModuleLacksAndKeepsTheVendor) {
    Support({Vendor("alpha", "scripted_none")});
    ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(), BindingLinesWithoutAnything("alpha"));
    EXPECT_EQ(ScanInterface::GetInstance().GetDeviceConnectState(DeviceOf("alpha")),
              kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(4, "call pFunc is nullptr - fail:",
                                                "ScanInterface::GetDeviceConnectState")));
}

struct Missing {
    std::string name;
    std::string message;
};

void PrintTo(const Missing& missing, std::ostream* out) {
    *out << missing.name;
}

class BindingWithout : public BrokerTest, public testing::WithParamInterface<Missing> {};

TEST_P(BindingWithout, OneEntryPointLogsThatOneAndBindsTheOthers) {
    Support({Vendor("alpha", "scripted_without_" + GetParam().name)});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(),
              Lines({LineIs(4, GetParam().message, kBinding)}) + BindingLines("alpha"));

    const ScriptedModule module("scripted_without_" + GetParam().name);
    module.Script(
        "result StopDeviceScan 11\nresult GetDeviceConnectState 12\n"
        "result BeforeConnectEventNotify 13\nresult ConnectSuccessNotifyEvent 14\n"
        "result ConnectFailNotifyEvent 15");
    const DeviceInfo device = DeviceOf("alpha");
    const auto expect = [](const std::string& name, int result) {
        return GetParam().name == name ? -1 : result;
    };
    EXPECT_EQ(scan.StartDeviceScan({nullptr, 0}), kNoCallback);
    EXPECT_EQ(scan.StopDeviceScan(), expect("StopDeviceScan", 11));
    EXPECT_EQ(scan.GetDeviceConnectState(device), expect("GetDeviceConnectState", 12));
    EXPECT_EQ(scan.BeforeConnectEventNotify(device), expect("BeforeConnectEventNotify", 13));
    EXPECT_EQ(scan.ConnectSuccessNotifyEvent(device), expect("ConnectSuccessNotifyEvent", 14));
    EXPECT_EQ(scan.ConnectFailNotifyEvent(device), expect("ConnectFailNotifyEvent", 15));
}

INSTANTIATE_TEST_SUITE_P(
    Each, BindingWithout,
    testing::Values(
        Missing{"StartDeviceScan", "startDeviceScan is nullptr, err:"},
        Missing{"StopDeviceScan", "stopDeviceScan is nullptr, err:"},
        Missing{"GetDeviceConnectState", "getDeviceConnectState is nullptr, err:"},
        Missing{"BeforeConnectEventNotify", "beforeConnectEventNotify is nullptr, err:"},
        Missing{"ConnectSuccessNotifyEvent", "connectSuccessNotifyEvent is nullptr, err:"},
        Missing{"ConnectFailNotifyEvent", "connectFailNotifyEvent is nullptr, err:"}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(Binding, TakesNoEntryPointFromAModulesDependency) {
    Support({Vendor("alpha", "scripted_dependent")});
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    const std::vector<std::string> lines = TakeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), LineIs(4, "startDeviceScan is nullptr, err:", kBinding));
}

TEST_F(Binding, PassesOverAVendorWithoutAModuleAndLogsNothingOfIt) {
    Support({Vendor("alpha", "no_such_module"), Vendor("beta", "scripted_broken"),
             Vendor("gamma", "scripted_all")});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(), BindingLines("gamma"));
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), kNothingToCall);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("beta")), kNothingToCall);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("gamma")), 1);
}

TEST_F(Binding, OfAListWhoseVendorsAreAllPassedOverStillCounts) {
    Support({Vendor("alpha", "no_such_module")});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_EQ(scan.StopDeviceScan(), kNothingToCall);
    EXPECT_THAT(
        TakeLines(),
        ElementsAre(LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo"),
                    LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo")));
    EXPECT_TRUE(scan.Init());
}

TEST_F(Binding, KeepsTheFirstVendorOfAProductId) {
    Support({Vendor("alpha", "scripted_all"), Vendor("alpha", "scripted_none")});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(), BindingLines("alpha") + BindingLinesWithoutAnything("alpha"));
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), 1);
    EXPECT_THAT(ScriptedModule("scripted_all").CallNames(), ElementsAre("GetDeviceConnectState"));
}

TEST_F(Binding, TellsProductIdsApartByteForByte) {
    Support({Vendor("Alpha", "scripted_all"), Vendor("alpha", "scripted_all_b")});
    ScanInterface& scan = ScanInterface::GetInstance();
    ScriptedModule("scripted_all").Script("result GetDeviceConnectState 21");
    ScriptedModule("scripted_all_b").Script("result GetDeviceConnectState 22");
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("Alpha")), 21);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), 22);
}

TEST_F(Binding, WithoutAnyVendorIsLogged) {
    ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(), EmptyListLines());
    EXPECT_THAT(ScriptedVendors::Requests(), ElementsAre("GetCurrentSupportList"));
}

TEST_F(Binding, WithoutAnyVendorLeavesEveryOperationRefused) {
    ScanInterface& scan = ScanInterface::GetInstance();
    TakeLines();
    const DeviceInfo device = DeviceOf("alpha");
    EXPECT_EQ(scan.StartDeviceScan({nullptr, 1}), kNotInitialised);
    EXPECT_EQ(scan.StopDeviceScan(), kNotInitialised);
    EXPECT_EQ(scan.GetDeviceConnectState(device), kNotInitialised);
    EXPECT_EQ(scan.BeforeConnectEventNotify(device), kNotInitialised);
    EXPECT_EQ(scan.ConnectSuccessNotifyEvent(device), kNotInitialised);
    EXPECT_EQ(scan.ConnectFailNotifyEvent(device), kNotInitialised);
    EXPECT_THAT(TakeLines(),
                ElementsAre(LineIs(4, "NOINITOK", "ScanInterface::StartDeviceScan"),
                            LineIs(4, "NOINITOK", "ScanInterface::StopDeviceScan"),
                            LineIs(4, "NOINITOK", "ScanInterface::GetDeviceConnectState"),
                            LineIs(4, "NOINITOK", "ScanInterface::BeforeConnectEventNotify"),
                            LineIs(4, "NOINITOK", "ScanInterface::ConnectSuccessNotifyEvent"),
                            LineIs(4, "NOINITOK", "ScanInterface::ConnectFailNotifyEvent")));
}

TEST_F(Binding, WithoutAnyVendorLeavesTheListenerAlone) {
    ScanInterface& scan = ScanInterface::GetInstance();
    ScanInterfaceListener& listener = ScanInterfaceListener::GetInstance();
    EXPECT_EQ(scan.StartDeviceScan({[](const DeviceInfo*) { return 0; }, 1}), kNotInitialised);
    EXPECT_FALSE(listener.GetDeviceCallbackIsEnable());
    listener.SetDeviceCallbackInfo({[](const DeviceInfo*) { return 0; }, 1});
    EXPECT_EQ(scan.StopDeviceScan(), kNotInitialised);
    EXPECT_TRUE(listener.GetDeviceCallbackIsEnable());
}

TEST_F(Binding, IsTriedAgainByInit) {
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_FALSE(scan.Init());
    EXPECT_EQ(TakeLines(), EmptyListLines() + EmptyListLines());
    EXPECT_EQ(scan.StopDeviceScan(), kNotInitialised);
    TakeLines();
    Support({Vendor("alpha", "scripted_all")});
    EXPECT_TRUE(scan.Init());
    EXPECT_EQ(TakeLines(), BindingLines("alpha"));
    EXPECT_EQ(scan.StopDeviceScan(), 0);
}

TEST_F(Binding, ByInitOfAListWhoseVendorsAreAllPassedOverCountsToo) {
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_EQ(scan.StopDeviceScan(), kNotInitialised);
    Support({Vendor("alpha", "no_such_module"), Vendor("beta", "scripted_broken")});
    TakeLines();
    EXPECT_TRUE(scan.Init());
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_EQ(scan.StopDeviceScan(), kNothingToCall);
    EXPECT_EQ(scan.StartDeviceScan({[](const DeviceInfo*) { return 0; }, 1}), kNothingToCall);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), kNothingToCall);
}

TEST_F(Binding, OfAModuleWithoutAHandleFindsNoEntryPoint) {
    ScriptedVendors::GiveNull("scripted_all");
    Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    ScanInterface& scan = ScanInterface::GetInstance();
    EXPECT_EQ(TakeLines(), BindingLinesWithoutAnything("alpha") + BindingLines("beta"));
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), kNothingToCall);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("beta")), 1);
    EXPECT_EQ(scan.StopDeviceScan(), 0);
}

TEST_F(Binding, AgainWithAnEmptyListChangesNothing) {
    Support({Vendor("alpha", "scripted_all")});
    ScanInterface& scan = ScanInterface::GetInstance();
    TakeLines();
    Support({});
    EXPECT_FALSE(scan.Init());
    EXPECT_EQ(TakeLines(), EmptyListLines());
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), 1);
}

TEST_F(Binding, AgainAddsNewVendorsAndKeepsThoseItHas) {
    Support({Vendor("beta", "scripted_all")});
    ScanInterface& scan = ScanInterface::GetInstance();
    TakeLines();
    Support({Vendor("beta", "scripted_all_b"), Vendor("alpha", "scripted_all_c")});
    EXPECT_TRUE(scan.Init());
    EXPECT_EQ(TakeLines(), BindingLines("beta") + BindingLines("alpha"));
    ScriptedModule("scripted_all").Script("result GetDeviceConnectState 31");
    ScriptedModule("scripted_all_b").Script("result GetDeviceConnectState 32");
    ScriptedModule("scripted_all_c").Script("result GetDeviceConnectState 33");
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("beta")), 31);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf("alpha")), 33);
}

}  // namespace
