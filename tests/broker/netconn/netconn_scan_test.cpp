// SPDX-License-Identifier: Apache-2.0

// Starting and stopping a Wi-Fi scan through a printer's access point.

#include <atomic>
#include <cstring>

#include "tests/broker/netconn/netconn_support.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kStart[] = "StartAPWifiScan";
constexpr char kStop[] = "StopAPWifiScan";
constexpr char kThread[] = "StartAPWifiScan::<lambda_1>::operator ()";

class StartAPWifiScanTest : public NetConnTest {};
using StopAPWifiScanTest = StartAPWifiScanTest;

TEST_F(StartAPWifiScanTest, StartsTheChosenVendorOnlyAndOnAThreadOfItsOwn) {
    NetConnInterface& dispatcher = With({Alpha(), Beta()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddNetwork(VendorNetworkOf("office"));
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 77}), 0);
    EXPECT_THAT(TakeOwnLines(), ElementsAre(SetLine("77"), Said(1, "call Func OK", kStart)));
    alpha.AwaitCallbacks(1);
    ASSERT_THAT(Application::NetworkReports(), SizeIs(1));
    EXPECT_NE(Application::NetworkReports()[0].thread, std::this_thread::get_id());
    EXPECT_THAT(ScriptedModule("scripted_all_b").Calls(), IsEmpty());
}

TEST_F(StartAPWifiScanTest, GivesTheVendorTheListenersRegistration) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, -123456}), 0);
    alpha.AwaitCalls(kStart, 1);
    VendorSdk::WifiCallbackInfo* const registration =
        NetConnInterfaceListener::GetInstance().SetDeviceCallbackInfo(
            {Application::OnNetwork, -123456});
    const ScriptedVendor::Call call = alpha.Calls().at(1);
    EXPECT_EQ(call.argument, registration);
    VendorSdk::WifiCallbackInfo seen;
    ASSERT_EQ(call.size, sizeof seen);
    std::memcpy(&seen, call.bytes, sizeof seen);
    EXPECT_EQ(seen.param, -123456);
    EXPECT_EQ(seen.callback, registration->callback);
}

TEST_F(StartAPWifiScanTest, DoesNotWaitForTheScan) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.Script("until-stopped");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha.AwaitRunningScans(1);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    alpha.AwaitRunningScans(0);
}

// Nobody listens, yet the text says that somebody does. A scan that runs is never refused.
TEST_F(StartAPWifiScanTest, WithoutACallbackSaysThatOneIsEnabled) {
    NetConnInterface& dispatcher = With({Alpha()});
    EXPECT_EQ(dispatcher.StartAPWifiScan({nullptr, 5}), kNoCallback);
    EXPECT_THAT(TakeLines(),
                ElementsAre(SetLine("5"),
                            Said(4, "GetDeviceCallback Is Enable,please first Stop", kStart)));
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
}

TEST_F(StartAPWifiScanTest, WithoutACallbackIsRefusedBeforeAnyVendorIsAsked) {
    NetConnInterface& dispatcher = With({Vendor("alpha", "no_such_module")});
    EXPECT_EQ(dispatcher.StartAPWifiScan({nullptr, 5}), kNoCallback);
}

TEST_F(StartAPWifiScanTest, WithoutACallbackLeavesTheNullRegistrationInPlace) {
    NetConnInterface& dispatcher = With({Alpha()});
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    ScriptedModule("scripted_all").AwaitCalls(kStart, 1);
    ASSERT_EQ(dispatcher.StartAPWifiScan({nullptr, 5}), kNoCallback);
    EXPECT_FALSE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    EXPECT_EQ(ScriptedModule("scripted_all").ReportNetworkNow(&network), 0);
    EXPECT_THAT(Application::NetworkReports(), IsEmpty());
}

TEST_F(StartAPWifiScanTest, LeavesTheRegistrationInPlaceWhenThereIsNoVendor) {
    NetConnInterface& dispatcher = With({Alpha()});
    Answer("scripted_all", 1);
    EXPECT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 5}), kNothingToCall);
    EXPECT_TRUE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartAPWifiScanTest, LeavesTheRegistrationInPlaceWhenTheVendorHasNoScan) {
    NetConnInterface& dispatcher = With({AlphaWithout(kStart)});
    EXPECT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 5}), kNothingToCall);
    EXPECT_TRUE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartAPWifiScanTest, WithoutVendorsDoesNotRegister) {
    NetConnInterface& dispatcher = With({});
    EXPECT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 5}), kNotInitialised);
    EXPECT_FALSE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartAPWifiScanTest, DuringAScanStartsASecondAndReplacesTheRegistration) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.Script("until-stopped");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    // A vendor reads its registration as it starts: not while it is replaced.
    alpha.AwaitCalls(kStart, 1);
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnOtherNetwork, 2}), 0);
    alpha.AwaitRunningScans(2);
    const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
    alpha.ReportNetworkNow(&network);
    EXPECT_THAT(Application::NetworkReports(), IsEmpty());
    EXPECT_THAT(Application::OtherNetworkReports(), SizeIs(1));
    dispatcher.StopAPWifiScan();
    alpha.AwaitRunningScans(0);
}

TEST_F(StartAPWifiScanTest, ShowsAFailingScanInTheLogOnly) {
    NetConnInterface& dispatcher = With({Alpha()});
    ScriptedModule("scripted_all").Script("result StartAPWifiScan -9");
    EXPECT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    const std::string failed = Said(4, "call Func fail, err:-9", kThread);
    EXPECT_TRUE(RecordingLog::WaitUntil(
        [&](const std::vector<RecordingLog::Line>& lines) {
            for (const RecordingLog::Line& line : lines) {
                if (LineText(line) == failed) {
                    return line.thread != std::this_thread::get_id();
                }
            }
            return false;
        },
        30000));
    EXPECT_TRUE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartAPWifiScanTest, SaysNothingOfAScanThatSucceeds) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha.AwaitCalls(kStart, 1);
    alpha.AwaitRunningScans(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_THAT(TakeLines(), ElementsAre(SetLine("1"), Said(1, "call Func OK", kStart)));
}

TEST_F(StopAPWifiScanTest, ReturnsTheVendorsResultUnchanged) {
    NetConnInterface& dispatcher = With({Alpha()});
    for (const int result : {0, 1, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all").Script("result StopAPWifiScan " + std::to_string(result));
        EXPECT_EQ(dispatcher.StopAPWifiScan(), result);
        const std::string outcome =
            result == 0 ? Said(1, "call Func OK", kStop)
                        : Said(4, "call Func fail, err:" + std::to_string(result), kStop);
        EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), outcome));
    }
}

TEST_F(StopAPWifiScanTest, DropsTheRegistrationEvenWhenItFails) {
    NetConnInterface& dispatcher = With({Alpha()});
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    Answer("scripted_all", 1);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), kNothingToCall);
    EXPECT_FALSE(NetConnInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StopAPWifiScanTest, WithoutVendorsLeavesTheRegistrationAlone) {
    NetConnInterface& dispatcher = With({});
    NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
    listener.SetDeviceCallbackInfo({Application::OnNetwork, 1});
    TakeLines();
    EXPECT_EQ(dispatcher.StopAPWifiScan(), kNotInitialised);
    EXPECT_TRUE(listener.GetDeviceCallbackIsEnable());
    EXPECT_THAT(TakeLines(), ElementsAre(Said(4, "NOINITOK", kStop)));
}

TEST_F(StopAPWifiScanTest, ReachesTheVendorOfNowAndNotTheOneThatScans) {
    NetConnInterface& dispatcher = With({Alpha(), Beta()});
    const ScriptedModule alpha("scripted_all");
    alpha.Script("until-stopped");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha.AwaitRunningScans(1);
    Answer("scripted_all", 1);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    EXPECT_EQ(alpha.RunningScans(), 1);
    EXPECT_THAT(ScriptedModule("scripted_all_b").CallNames(),
                ElementsAre("IsConnectCurrentWifiAP", kStop));
    Answer("scripted_all", 0);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    alpha.AwaitRunningScans(0);
}

TEST_F(StopAPWifiScanTest, DropsWhatTheVendorStillReports) {
    NetConnInterface& dispatcher = With({Alpha()});
    const ScriptedModule alpha("scripted_all");
    alpha.AddNetwork(VendorNetworkOf("office"));
    alpha.Script("after-stop 5");
    ASSERT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha.AwaitCallbacks(1);
    ASSERT_EQ(dispatcher.StopAPWifiScan(), 0);
    TakeLines();
    alpha.AwaitCallbacks(6);
    EXPECT_THAT(Application::NetworkReports(), SizeIs(1));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

}  // namespace
