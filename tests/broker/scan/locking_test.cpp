// SPDX-License-Identifier: Apache-2.0

// What waits for what: start and stop for each other, and nothing else for anything.

#include <chrono>
#include <future>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using namespace std::chrono_literals;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto kAWhile = 200ms;

class Locking : public BrokerTest {
protected:
    void SetUp() override {
        Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b")});
        ScanInterface::GetInstance();
        ScanInterfaceListener::GetInstance();
    }

    static ScanInterface& Scan() { return ScanInterface::GetInstance(); }
    static std::future<int> StartElsewhere() {
        return std::async(std::launch::async, [] {
            return Scan().StartDeviceScan({Application::OnDevice, 1});
        });
    }
    static std::future<int> StopElsewhere() {
        return std::async(std::launch::async, [] { return Scan().StopDeviceScan(); });
    }
    static bool IsDone(const std::future<int>& operation) {
        return operation.wait_for(0ms) == std::future_status::ready;
    }
    // A stop that is inside the first vendor's module and holds the lock.
    std::future<int> StopInsideAVendor() {
        alpha.Block("StopDeviceScan");
        std::future<int> stop = StopElsewhere();
        alpha.AwaitCalls("StopDeviceScan", 1);
        return stop;
    }

    ScriptedModule alpha{"scripted_all"};
    ScriptedModule beta{"scripted_all_b"};
};

TEST_F(Locking, AStartWaitsForAStop) {
    std::future<int> stop = StopInsideAVendor();
    TakeLines();
    std::future<int> start = StartElsewhere();
    EXPECT_EQ(start.wait_for(kAWhile), std::future_status::timeout);
    // Not even the registration comes before the lock.
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_FALSE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
    EXPECT_FALSE(IsDone(stop));
    alpha.Unblock("StopDeviceScan");
    EXPECT_EQ(stop.get(), 0);
    EXPECT_EQ(start.get(), 0);
    alpha.AwaitCalls("StartDeviceScan", 1);
    EXPECT_TRUE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
}

TEST_F(Locking, AStopWaitsForAStop) {
    std::future<int> first = StopInsideAVendor();
    std::future<int> second = StopElsewhere();
    EXPECT_EQ(second.wait_for(kAWhile), std::future_status::timeout);
    EXPECT_THAT(alpha.Calls(), SizeIs(1));
    EXPECT_THAT(beta.Calls(), IsEmpty());
    alpha.Unblock("StopDeviceScan");
    EXPECT_EQ(first.get(), 0);
    EXPECT_EQ(second.get(), 0);
    EXPECT_THAT(alpha.Calls(), SizeIs(2));
    EXPECT_THAT(beta.Calls(), SizeIs(2));
}

TEST_F(Locking, AStopWaitsForAStart) {
    // The first of the start's "call Func OK" lines is held back: the start has the lock.
    std::promise<void> inside;
    std::promise<void> release;
    RecordingLog::OnLine(
        [&, once = std::make_shared<std::atomic<bool>>(false)](const RecordingLog::Line& line) {
            if (line.text.starts_with(L"call Func OK") && !once->exchange(true)) {
                inside.set_value();
                release.get_future().wait();
            }
        });
    std::future<int> start = StartElsewhere();
    inside.get_future().wait();
    std::future<int> stop = StopElsewhere();
    EXPECT_EQ(stop.wait_for(kAWhile), std::future_status::timeout);
    EXPECT_FALSE(IsDone(start));
    release.set_value();
    // The stop has cleared the registration already: the start finds it gone.
    EXPECT_EQ(start.get(), kNoCallback);
    EXPECT_EQ(stop.get(), 0);
    RecordingLog::OnLine({});
    alpha.AwaitCalls("StartDeviceScan", 1);
    EXPECT_EQ(beta.CallNames(), std::vector<std::string>{"StopDeviceScan"});
}

TEST_F(Locking, AStartWaitsForAStart) {
    std::promise<void> inside;
    std::promise<void> release;
    RecordingLog::OnLine(
        [&, once = std::make_shared<std::atomic<bool>>(false)](const RecordingLog::Line& line) {
            if (line.text.starts_with(L"call Func OK") && !once->exchange(true)) {
                inside.set_value();
                release.get_future().wait();
            }
        });
    std::future<int> first = StartElsewhere();
    inside.get_future().wait();
    TakeLines();
    std::future<int> second = StartElsewhere();
    EXPECT_EQ(second.wait_for(kAWhile), std::future_status::timeout);
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_FALSE(IsDone(first));
    release.set_value();
    EXPECT_EQ(first.get(), 0);
    EXPECT_EQ(second.get(), 0);
    RecordingLog::OnLine({});
    alpha.AwaitCalls("StartDeviceScan", 2);
    beta.AwaitCalls("StartDeviceScan", 2);
    alpha.AwaitRunningScans(0);
    beta.AwaitRunningScans(0);
}

TEST_F(Locking, AStopDoesNotWaitForScans) {
    alpha.Block("StartDeviceScan");
    ASSERT_EQ(Scan().StartDeviceScan({Application::OnDevice, 1}), 0);
    alpha.AwaitCalls("StartDeviceScan", 1);
    EXPECT_EQ(Scan().StopDeviceScan(), 0);
    EXPECT_EQ(alpha.RunningScans(), 1);
    alpha.Unblock("StartDeviceScan");
    alpha.AwaitRunningScans(0);
    beta.AwaitRunningScans(0);
}

TEST_F(Locking, AnInitWaitsForNothing) {
    // With lists that change nothing: the stop is in the middle of the table.
    std::future<int> stop = StopInsideAVendor();
    EXPECT_TRUE(Scan().Init());
    Support({});
    EXPECT_FALSE(Scan().Init());
    EXPECT_FALSE(IsDone(stop));
    alpha.Unblock("StopDeviceScan");
    EXPECT_EQ(stop.get(), 0);
}

TEST_F(Locking, AStopThatWaitsForTheLockDropsReportsAlready) {
    std::future<int> first = StopInsideAVendor();
    ScanInterfaceListener& listener = ScanInterfaceListener::GetInstance();
    const VendorSdk::DeviceCallbackInfo* const registration =
        listener.SetDeviceCallbackInfo({Application::OnDevice, 1});
    Application::AnswerWith([](const DeviceInfo&) { return 7; });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(registration->callback(&device), 7);

    std::future<int> second = StopElsewhere();
    const auto giveUp = std::chrono::steady_clock::now() + 30s;
    while (listener.GetDeviceCallbackIsEnable() && std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(1ms);
    }
    EXPECT_FALSE(listener.GetDeviceCallbackIsEnable());
    EXPECT_FALSE(IsDone(second));
    EXPECT_FALSE(IsDone(first));
    EXPECT_EQ(registration->callback(&device), 0);
    EXPECT_THAT(Application::Reports(), SizeIs(1));
    alpha.Unblock("StopDeviceScan");
    first.get();
    second.get();
}

TEST_F(Locking, OperationsOnADeviceWaitForNothing) {
    std::future<int> stop = StopInsideAVendor();
    // Another operation is held inside the vendor as well.
    alpha.Block("GetDeviceConnectState");
    std::future<int> state = std::async(
        std::launch::async, [] { return Scan().GetDeviceConnectState(DeviceOf("alpha")); });
    alpha.AwaitCalls("GetDeviceConnectState", 1);

    EXPECT_EQ(Scan().BeforeConnectEventNotify(DeviceOf("alpha")), 0);
    EXPECT_EQ(Scan().ConnectSuccessNotifyEvent(DeviceOf("alpha")), 0);
    EXPECT_EQ(Scan().ConnectFailNotifyEvent(DeviceOf("alpha")), 0);
    EXPECT_EQ(Scan().GetDeviceConnectState(DeviceOf("beta")), 1);
    EXPECT_EQ(DiscoverScanInterface::GetInstance().BeforeConnectEventNotify(DeviceOf("beta")), 0);
    EXPECT_FALSE(IsDone(stop));
    EXPECT_FALSE(IsDone(state));
    alpha.Unblock("StopDeviceScan");
    EXPECT_EQ(stop.get(), 0);

    EXPECT_EQ(Scan().StartDeviceScan({Application::OnDevice, 1}), 0);
    EXPECT_EQ(Scan().StopDeviceScan(), 0);
    EXPECT_FALSE(IsDone(state));
    alpha.Unblock("GetDeviceConnectState");
    EXPECT_EQ(state.get(), 1);
}

TEST_F(Locking, ReportsWaitForNothing) {
    std::future<int> stop = StopInsideAVendor();
    const VendorSdk::DeviceCallbackInfo* const registration =
        ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({Application::OnDevice, 1});
    // The application asks the device's vendor while it is told of the device.
    Application::AnswerWith(
        [](const DeviceInfo& device) { return Scan().GetDeviceConnectState(device) + 100; });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("beta");
    EXPECT_EQ(registration->callback(&device), 101);
    EXPECT_FALSE(IsDone(stop));
    alpha.Unblock("StopDeviceScan");
    stop.get();
}

TEST_F(Locking, AScanThatStartsWaitsForNothing) {
    // The vendors' threads need neither the lock nor the starting thread.
    alpha.Script("until-stopped");
    ASSERT_EQ(Scan().StartDeviceScan({Application::OnDevice, 1}), 0);
    alpha.AwaitRunningScans(1);
    std::future<int> stop = StopInsideAVendor();
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(alpha.ReportNow(&device), 0);
    alpha.Unblock("StopDeviceScan");
    EXPECT_EQ(stop.get(), 0);
    alpha.AwaitRunningScans(0);
}

}  // namespace
