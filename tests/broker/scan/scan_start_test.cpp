// SPDX-License-Identifier: Apache-2.0

// StartDeviceScan of the dispatcher.

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kStart[] = "ScanInterface::StartDeviceScan";
constexpr char kThread[] = "ScanInterface::StartDeviceScan::<lambda_1>::operator ()";

std::string ClearLine() {
    return LineIs(1, "Clear info", "ScanInterfaceListener::ClearDeviceCallbackInfo");
}

std::string SetLine(const std::string& param) {
    return LineIs(1, "Set info" + param, "ScanInterfaceListener::SetDeviceCallbackInfo");
}

class StartDeviceScanTest : public BrokerTest {
protected:
    // The dispatcher with these vendors; the lines of binding them are gone.
    static ScanInterface& ScanWith(std::vector<VendorInfo> vendors) {
        Support(std::move(vendors));
        ScanInterface& scan = ScanInterface::GetInstance();
        TakeLines();
        return scan;
    }
};

TEST_F(StartDeviceScanTest, StartsEveryVendorAndLogsInOrder) {
    ScanInterface& scan =
        ScanWith({Vendor("beta", "scripted_all_b"), Vendor("alpha", "scripted_all")});
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 77}), 0);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(ClearLine(), SetLine("77"), LineIs(1, "call Func OK", kStart),
                            LineIs(1, "call Func OK", kStart)));
    for (const char* name : {"scripted_all", "scripted_all_b"}) {
        const ScriptedModule module(name);
        module.AwaitCalls("StartDeviceScan", 1);
        EXPECT_THAT(module.CallNames(), ElementsAre("StartDeviceScan"));
    }
}

TEST_F(StartDeviceScanTest, GivesEveryVendorTheListenersRegistrationAndTheCallersParam) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, -123456}), 0);
    const ScriptedModule alpha("scripted_all");
    const ScriptedModule beta("scripted_all_b");
    alpha.AwaitCalls("StartDeviceScan", 1);
    beta.AwaitCalls("StartDeviceScan", 1);
    VendorSdk::DeviceCallbackInfo* const registration =
        ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo(
            {Application::OnDevice, -123456});
    for (const ScriptedModule& module : {alpha, beta}) {
        const ScriptedVendor::Call call = module.Calls().at(0);
        EXPECT_EQ(call.argument, registration);
        VendorSdk::DeviceCallbackInfo seen;
        ASSERT_EQ(call.size, sizeof seen);
        std::memcpy(&seen, call.bytes, sizeof seen);
        EXPECT_EQ(seen.param, -123456);
        EXPECT_EQ(seen.callback, registration->callback);
    }
}

TEST_F(StartDeviceScanTest, DoesNotWaitForTheVendorsAndGivesEachAThreadOfItsOwn) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    const ScriptedModule alpha("scripted_all");
    const ScriptedModule beta("scripted_all_b");
    for (const ScriptedModule& module : {alpha, beta}) {
        module.AddDevice(VendorDeviceOf("alpha"));
        module.Block("StartDeviceScan");
    }
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    alpha.AwaitCalls("StartDeviceScan", 1);
    beta.AwaitCalls("StartDeviceScan", 1);
    EXPECT_EQ(alpha.RunningScans() + beta.RunningScans(), 2);
    alpha.Unblock("StartDeviceScan");
    alpha.AwaitRunningScans(0);
    beta.Unblock("StartDeviceScan");
    beta.AwaitRunningScans(0);
    std::set<std::thread::id> threads = {std::this_thread::get_id()};
    for (const Application::Report& report : Application::Reports()) {
        threads.insert(report.thread);
    }
    EXPECT_THAT(threads, SizeIs(3));
}

TEST_F(StartDeviceScanTest, PassesOverAVendorThatHasNoScan) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_without_StartDeviceScan"),
                  Vendor("beta", "scripted_all"), Vendor("gamma", "scripted_none")});
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(ClearLine(), SetLine("1"), LineIs(3, "pFunc is nullptr, err:", kStart),
                            LineIs(1, "call Func OK", kStart),
                            LineIs(3, "pFunc is nullptr, err:", kStart)));
}

TEST_F(StartDeviceScanTest, WithoutAnyVendorThatScansRegistersAllTheSame) {
    ScanInterface& scan = ScanWith(
        {Vendor("alpha", "scripted_without_StartDeviceScan"), Vendor("beta", "scripted_none")});
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 9}), kNothingToCall);
    EXPECT_THAT(TakeLines(),
                ElementsAre(ClearLine(), SetLine("9"), LineIs(3, "pFunc is nullptr, err:", kStart),
                            LineIs(3, "pFunc is nullptr, err:", kStart)));
    EXPECT_TRUE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartDeviceScanTest, WithAnEmptyTableRegistersAllTheSame) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "no_such_module")});
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 9}), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), SetLine("9")));
    EXPECT_TRUE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(StartDeviceScanTest, WithoutACallbackStartsNobody) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    EXPECT_EQ(scan.StartDeviceScan({nullptr, 5}), kNoCallback);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), SetLine("5"),
                                         LineIs(4, "GetDeviceCallback Is Not Enable", kStart)));
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_THAT(ScriptedModule("scripted_all").Calls(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all_b").Calls(), IsEmpty());
}

TEST_F(StartDeviceScanTest, WithoutACallbackIsRefusedEvenWhenNoVendorScans) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_none")});
    EXPECT_EQ(scan.StartDeviceScan({nullptr, 5}), kNoCallback);
}

TEST_F(StartDeviceScanTest, WithoutACallbackAndWithAnEmptyTableHasNothingToCall) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "no_such_module")});
    EXPECT_EQ(scan.StartDeviceScan({nullptr, 5}), kNothingToCall);
    EXPECT_THAT(TakeLines(), ElementsAre(ClearLine(), SetLine("5")));
}

TEST_F(StartDeviceScanTest, WithoutACallbackReplacesAnEarlierOne) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    ASSERT_EQ(scan.StartDeviceScan({nullptr, 1}), kNoCallback);
    const ScriptedModule module("scripted_all");
    module.AwaitCalls("StartDeviceScan", 1);
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(module.ReportNow(&device), 0);
    EXPECT_THAT(Application::Reports(), IsEmpty());
}

TEST_F(StartDeviceScanTest, EndsWhenTheCallbackGoesBetweenTwoVendors) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b"),
                  Vendor("gamma", "scripted_all_c")});
    const ScriptedModule alpha("scripted_all");
    alpha.Script("until-stopped");
    const std::thread::id own = std::this_thread::get_id();
    RecordingLog::OnLine([own](const RecordingLog::Line& line) {
        if (line.thread == own && line.text.starts_with(L"call Func OK")) {
            ScanInterfaceListener::GetInstance().ClearDeviceCallbackInfo();
        }
    });
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), kNoCallback);
    RecordingLog::OnLine({});
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(ClearLine(), SetLine("1"), LineIs(1, "call Func OK", kStart),
                            ClearLine(), LineIs(4, "GetDeviceCallback Is Not Enable", kStart)));
    alpha.AwaitRunningScans(1);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_THAT(ScriptedModule("scripted_all_b").Calls(), IsEmpty());
    EXPECT_THAT(ScriptedModule("scripted_all_c").Calls(), IsEmpty());
    // The scan that was started goes on, and reaches whoever registers next.
    EXPECT_EQ(alpha.RunningScans(), 1);
    ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 8; });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(alpha.ReportNow(&device), 8);
    // The lock is free again.
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    alpha.AwaitRunningScans(0);
}

TEST_F(StartDeviceScanTest, LogsAVendorsFailureFromTheVendorsThread) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    ScriptedModule("scripted_all").Script("result StartDeviceScan -17");
    EXPECT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    const auto isFailure = [](const RecordingLog::Line& line) {
        return LineText(line) == LineIs(4, "call Func fail, err:-17", kThread);
    };
    const std::thread::id own = std::this_thread::get_id();
    EXPECT_TRUE(RecordingLog::WaitUntil(
        [&](const std::vector<RecordingLog::Line>& lines) {
            return std::any_of(lines.begin(), lines.end(), [&](const RecordingLog::Line& line) {
                return isFailure(line) && line.thread != own;
            });
        },
        30000));
    ScriptedModule("scripted_all_b").AwaitRunningScans(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(ClearLine(), SetLine("1"), LineIs(1, "call Func OK", kStart),
                            LineIs(1, "call Func OK", kStart)));
}

TEST_F(StartDeviceScanTest, LogsNothingFromTheThreadsOfVendorsThatSucceed) {
    ScanInterface& scan =
        ScanWith({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    for (const char* name : {"scripted_all", "scripted_all_b"}) {
        ScriptedModule(name).AwaitCalls("StartDeviceScan", 1);
        ScriptedModule(name).AwaitRunningScans(0);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_THAT(TakeLines(),
                ElementsAre(ClearLine(), SetLine("1"), LineIs(1, "call Func OK", kStart),
                            LineIs(1, "call Func OK", kStart)));
}

TEST_F(StartDeviceScanTest, AgainWithoutAStopReplacesTheCallbackAndStartsEveryVendorAgain) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("until-stopped");
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 4}), 0);
    module.AwaitCalls("StartDeviceScan", 1);
    TakeLines();
    ASSERT_EQ(scan.StartDeviceScan({Application::OnOtherDevice, 4}), 0);
    EXPECT_THAT(TakeOwnLines(), ElementsAre(SetLine("4"), LineIs(1, "call Func OK", kStart)));
    module.AwaitCalls("StartDeviceScan", 2);
    EXPECT_EQ(module.RunningScans(), 2);
    EXPECT_EQ(module.Calls().at(0).argument, module.Calls().at(1).argument);
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    module.ReportNow(&device);
    EXPECT_THAT(Application::Reports(), IsEmpty());
    EXPECT_THAT(Application::OtherReports(), SizeIs(1));
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    module.AwaitRunningScans(0);
}

TEST_F(StartDeviceScanTest, AgainWithAnotherParamGivesTheVendorsThatParam) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    for (const int param : {1, 2}) {
        ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, param}), 0);
        module.AwaitCalls("StartDeviceScan", static_cast<std::size_t>(param));
        module.AwaitRunningScans(0);
    }
    VendorSdk::DeviceCallbackInfo seen;
    std::memcpy(&seen, module.Calls().at(1).bytes, sizeof seen);
    EXPECT_EQ(seen.param, 2);
}

TEST_F(StartDeviceScanTest, RelaysEveryDeviceByteForByteAndTheAnswersBack) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    std::vector<std::string> reported;
    for (const char* model : {"alpha", "beta", "a model id of thirty-two letters"}) {
        const VendorSdk::DeviceInfo device = VendorDeviceOf(model);
        module.AddDevice(device);
        reported.push_back(BytesOf(device));
    }
    Application::AnswerWith([](const DeviceInfo& device) { return device.modelID[0] * 1000; });
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    module.AwaitCallbacks(3);
    std::vector<std::string> received;
    for (const Application::Report& report : Application::Reports()) {
        received.push_back(report.bytes);
    }
    EXPECT_EQ(received, reported);
    EXPECT_THAT(module.CallbackResults(), ElementsAre('a' * 1000, 'b' * 1000, 'a' * 1000));
    module.AwaitRunningScans(0);
}

TEST_F(StartDeviceScanTest, RelaysWhatSeveralThreadsReportAtOnce) {
    ScanInterface& scan = ScanWith({Vendor("alpha", "scripted_all")});
    const ScriptedModule module("scripted_all");
    module.Script("threads 4");
    module.AddDevice(VendorDeviceOf("alpha"));
    // Each call of the callback waits until all four are in it: a lock around it would end in
    // results of -1.
    static std::atomic<int> inside{0};
    Application::AnswerWith([](const DeviceInfo&) {
        ++inside;
        for (int patience = 0; inside < 4 && patience < 3000; ++patience) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return inside == 4 ? 4 : -1;
    });
    ASSERT_EQ(scan.StartDeviceScan({Application::OnDevice, 1}), 0);
    module.AwaitCallbacks(4);
    EXPECT_THAT(module.CallbackResults(), ElementsAre(4, 4, 4, 4));
    module.AwaitRunningScans(0);
}

}  // namespace
