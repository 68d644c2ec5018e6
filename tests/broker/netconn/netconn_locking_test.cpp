// SPDX-License-Identifier: Apache-2.0

// What waits for what in the access-point family: start and stop for each other, nothing else.

#include <atomic>
#include <chrono>
#include <future>
#include <optional>

#include "tests/broker/netconn/netconn_support.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using namespace std::chrono_literals;
using testing::IsEmpty;

class NetConnLocking : public NetConnTest {
protected:
    void SetUp() override {
        With({Alpha(), Beta()});
        alpha.emplace("scripted_all");
    }

    static Dispatcher& It() { return Dispatcher::GetInstance(); }
    static std::future<int> StartElsewhere() {
        return std::async(std::launch::async, [] {
            return It().StartAPWifiScan({Application::OnNetwork, 1});
        });
    }
    static std::future<int> StopElsewhere() {
        return std::async(std::launch::async, [] { return It().StopAPWifiScan(); });
    }
    static bool Waits(const std::future<int>& operation) {
        return operation.wait_for(200ms) == std::future_status::timeout;
    }

    // The scan reports on and on until it is stopped.
    static void AwaitAnotherReport() {
        const long before = reports;
        const auto giveUp = std::chrono::steady_clock::now() + 30s;
        while (reports == before) {
            ASSERT_LT(std::chrono::steady_clock::now(), giveUp);
            std::this_thread::yield();
        }
    }

    static inline std::atomic<long> reports{0};
    std::optional<ScriptedModule> alpha;
};

TEST_F(NetConnLocking, AStartWaitsForAStopInsideTheVendor) {
    alpha->Block("StopAPWifiScan");
    std::future<int> stop = StopElsewhere();
    alpha->AwaitCalls("StopAPWifiScan", 1);
    TakeLines();
    std::future<int> start = StartElsewhere();
    EXPECT_TRUE(Waits(start));
    EXPECT_THAT(TakeLines(), IsEmpty());
    alpha->Unblock("StopAPWifiScan");
    EXPECT_EQ(stop.get(), 0);
    EXPECT_EQ(start.get(), 0);
}

TEST_F(NetConnLocking, AStopWaitsForAStartThatIsChoosingButDropsReportsAlready) {
    alpha->Block("IsConnectCurrentWifiAP");
    std::future<int> start = StartElsewhere();
    alpha->AwaitCalls("IsConnectCurrentWifiAP", 1);
    NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
    EXPECT_TRUE(listener.GetDeviceCallbackIsEnable());
    std::future<int> stop = StopElsewhere();
    EXPECT_TRUE(Waits(stop));
    EXPECT_FALSE(listener.GetDeviceCallbackIsEnable());
    EXPECT_EQ(alpha->CallNames(), std::vector<std::string>{"IsConnectCurrentWifiAP"});
    alpha->Unblock("IsConnectCurrentWifiAP");
    // The start has tested the registration before: it goes on.
    EXPECT_EQ(start.get(), 0);
    EXPECT_EQ(stop.get(), 0);
}

TEST_F(NetConnLocking, OperationsWithARecordWaitForNothing) {
    alpha->Block("StopAPWifiScan");
    std::future<int> stop = StopElsewhere();
    alpha->AwaitCalls("StopAPWifiScan", 1);
    DeviceInfo device{};
    EXPECT_EQ(It().PrinterAPNetConfigEvent(NetworkOf("office")), 0);
    EXPECT_EQ(It().GetDeviceInfoByNet(device), 0);
    EXPECT_EQ(It().IsLocalAreaNetworkOK(DeviceOf("beta")), 0);
    EXPECT_TRUE(Waits(stop));
    alpha->Unblock("StopAPWifiScan");
    EXPECT_EQ(stop.get(), 0);
}

TEST_F(NetConnLocking, ARunningScanHoldsNothingUp) {
    alpha->Block("StartAPWifiScan");
    ASSERT_EQ(It().StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha->AwaitCalls("StartAPWifiScan", 1);
    EXPECT_EQ(It().StopAPWifiScan(), 0);
    EXPECT_EQ(It().StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha->Unblock("StartAPWifiScan");
    alpha->AwaitRunningScans(0);
}

TEST_F(NetConnLocking, TheScanFamilyHasALockOfItsOwn) {
    ScanInterface::GetInstance();
    alpha->Block("StopAPWifiScan");
    std::future<int> stop = StopElsewhere();
    alpha->AwaitCalls("StopAPWifiScan", 1);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    alpha->Unblock("StopAPWifiScan");
    stop.get();
}

// Reports on several threads while the registration comes and goes: for the sanitizers.
TEST_F(NetConnLocking, ReportsRaceWithStartAndStop) {
    alpha->AddNetwork(VendorNetworkOf("office"));
    alpha->Script("threads 3\nrepeat 0\nuntil-stopped");
    RecordingLog::Discard();
    static const auto count = [](const WifiConfigInfo*) { return static_cast<int>(++reports); };
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(It().StartAPWifiScan({count, round}), 0);
        alpha->AwaitCalls("StartAPWifiScan", static_cast<std::size_t>(round) + 1);
        AwaitAnotherReport();
        ASSERT_EQ(It().StopAPWifiScan(), 0);
    }
    alpha->AwaitRunningScans(0);
    EXPECT_GE(reports, 50);
}

}  // namespace
