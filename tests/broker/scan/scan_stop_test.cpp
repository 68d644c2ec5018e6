// SPDX-License-Identifier: Apache-2.0

// StopDeviceScan of the dispatcher.

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kStop[] = "ScanInterface::StopDeviceScan";

std::string ClearLine() {
    return LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo");
}

class StopDeviceScanTest : public BrokerTest {
protected:
    // The dispatcher with these vendors; the lines of binding them and of the listener's first use
    // are gone.
    static ScanInterface& ScanWith(std::vector<VendorInfo> vendors) {
        Support(std::move(vendors));
        ScanInterface& scan = ScanInterface::GetInstance();
        ScanInterfaceListener::GetInstance();
        TakeLines();
        return scan;
    }
};

TEST_F(StopDeviceScanTest, CallsEveryVendorAlsoWithoutAStart) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), LineIs(1, "call Func OK", kStop),
                                         LineIs(1, "call Func OK", kStop)));
    EXPECT_THAT(ScriptedModule("scripted_all").CallNames(), ElementsAre("StopDeviceScan"));
    EXPECT_THAT(ScriptedModule("scripted_all_b").CallNames(), ElementsAre("StopDeviceScan"));
}

TEST_F(StopDeviceScanTest, ReturnsTheLastVendorsResult) {
    // The order is that of the product ids, whatever the list's.
    ScanInterface& scan =
        ScanWith({Vendor("beta", "scripted_all_b"), Vendor("alpha", "scripted_all")});
    ScriptedModule("scripted_all").Script("result StopDeviceScan 0");
    ScriptedModule("scripted_all_b").Script("result StopDeviceScan 5");
    EXPECT_EQ(scan.StopDeviceScan(), 5);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), LineIs(1, "call Func OK", kStop),
                                         LineIs(4, "call Func fail, err:5", kStop)));
    ScriptedModule("scripted_all").Script("result StopDeviceScan 5");
    ScriptedModule("scripted_all_b").Script("result StopDeviceScan 0");
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), LineIs(4, "call Func fail, err:5", kStop),
                                         LineIs(1, "call Func OK", kStop)));
}

TEST_F(StopDeviceScanTest, ClearsFirstAndLogsEachVendorBeforeItCallsTheNext) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    const ScriptedModule alpha("scripted_all");
    const ScriptedModule beta("scripted_all_b");
    std::vector<std::size_t> calls;
    RecordingLog::OnLine([&](const RecordingLog::Line&) {
        calls.push_back(alpha.Calls().size() * 10 + beta.Calls().size());
    });
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    RecordingLog::OnLine({});
    EXPECT_THAT(calls, ElementsAre(0u, 10u, 11u));
}

TEST_F(StopDeviceScanTest, PassesAnyResultThrough) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    for (const int result : {1, -1, -2, -3, 2147483647, -2147483647 - 1}) {
        ScriptedModule("scripted_all").Script("result StopDeviceScan " + std::to_string(result));
        EXPECT_EQ(scan.StopDeviceScan(), result);
        EXPECT_THAT(TakeLines(),
                    ElementsAre(ClearLine(),
                                LineIs(4, "call Func fail, err:" + std::to_string(result), kStop)));
    }
}

TEST_F(StopDeviceScanTest, KeepsTheResultOfTheLastVendorThatHasAStop) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_none"), Vendor("beta", "scripted_all"),
                  Vendor("gamma", "scripted_without_StopDeviceScan")});
    ScriptedModule("scripted_all").Script("result StopDeviceScan 8");
    EXPECT_EQ(scan.StopDeviceScan(), 8);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), LineIs(3, "pFunc is nullptr, err:", kStop),
                                         LineIs(4, "call Func fail, err:8", kStop),
                                         LineIs(3, "pFunc is nullptr, err:", kStop)));
}

TEST_F(StopDeviceScanTest, WithoutAnyVendorThatStopsHasNothingToCall) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_without_StopDeviceScan")});
    EXPECT_EQ(scan.StopDeviceScan(), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), LineIs(3, "pFunc is nullptr, err:", kStop)));
}

TEST_F(StopDeviceScanTest, WithAnEmptyTableClearsAllTheSame) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "no_such_module")});
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), kNothingToCall);
    TakeLines();
    EXPECT_EQ(scan.StopDeviceScan(), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine()));
    EXPECT_FALSE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StopDeviceScanTest, EndsScansThatRunUntilStopped) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("until-stopped");
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    module.AwaitRunningScans(1);
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    module.AwaitRunningScans(0);
}

TEST_F(StopDeviceScanTest, DropsWhatAVendorReportsLater) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    Application::AnswerWith([](const DeviceInfo&) { return 6; });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    module.AwaitCalls("StartDeviceScan", 1);
    module.AwaitRunningScans(0);
    EXPECT_EQ(module.ReportNow(&device), 6);
    ASSERT_EQ(scan.StopDeviceScan(), 0);
    TakeLines();
    EXPECT_EQ(module.ReportNow(&device), 0);
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_THAT(Application::Reports(), testing::SizeIs(1));
    // The vendors' registration itself stays as it was.
    EXPECT_NE(module.Registration()->callback, nullptr);
    EXPECT_EQ(module.Registration()->param, 1);
}

TEST_F(StopDeviceScanTest, DropsWhatAVendorsThreadGoesOnReporting) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("after-stop 3");
    module.AddDevice(VendorDeviceOf("alpha"));
    Application::AnswerWith([](const DeviceInfo&) { return 6; });
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    module.AwaitCallbacks(1);
    module.AwaitRunningScans(0);
    ASSERT_EQ(scan.StopDeviceScan(), 0);
    module.AwaitCallbacks(4);
    EXPECT_THAT(module.CallbackResults(), ElementsAre(6, 0, 0, 0));
    EXPECT_THAT(Application::Reports(), testing::SizeIs(1));
}

TEST_F(StopDeviceScanTest, LetsTheNextStartReportAgain) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.AddDevice(VendorDeviceOf("alpha"));
    for (std::size_t round = 1; round <= 3; ++round) {
        ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
        module.AwaitCallbacks(round);
        ASSERT_EQ(scan.StopDeviceScan(), 0);
        EXPECT_THAT(Application::Reports(), testing::SizeIs(round));
    }
    module.AwaitRunningScans(0);
}

}  // namespace
