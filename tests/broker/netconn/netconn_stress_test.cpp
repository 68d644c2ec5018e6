// SPDX-License-Identifier: Apache-2.0

// The access-point family from many threads at once; the sanitizers watch.

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "tests/broker/netconn/netconn_support.h"
#include "tests/support/in_threads.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;

std::atomic<long> received{0};

int OnNetwork(const WifiConfigInfo* network) {
    ++received;
    return network->ssid[0];
}

class NetConnStress : public NetConnTest {
protected:
    void SetUp() override {
        With({Alpha(), Beta()});
        RecordingLog::Discard();
        alpha.emplace("scripted_all");
    }

    static DiscoverNetConnInterface& Facade() { return DiscoverNetConnInterface::GetInstance(); }

    // Stops until all has been quiet for half a second: of starts that gave up in the middle it is
    // not known whether their scan still begins.
    void StopWhatStillStarts() const {
        int quiet = 0;
        for (int round = 0; round < 1500 && quiet < 25; ++round) {
            EXPECT_EQ(Facade().StopAPWifiScan(), 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            quiet = alpha->RunningScans() == 0 ? quiet + 1 : 0;
        }
        EXPECT_EQ(quiet, 25);
    }

    std::optional<ScriptedModule> alpha;
};

TEST_F(NetConnStress, AThousandStartsAndStopsEachReachTheVendor) {
    for (int round = 0; round < 1000; ++round) {
        ASSERT_EQ(Facade().StartAPWifiScan({OnNetwork, 1}), 0);
        ASSERT_EQ(Facade().StopAPWifiScan(), 0);
    }
    alpha->AwaitCalls("StartAPWifiScan", 1000);
    alpha->AwaitCalls("StopAPWifiScan", 1000);
    StopWhatStillStarts();
    EXPECT_TRUE(ScriptedModule("scripted_all_b").Calls().empty());
}

TEST_F(NetConnStress, StartsAndStopsFromManyThreadsWhileTheVendorReports) {
    alpha->Script("threads 2\nrepeat 20\nuntil-stopped");
    alpha->AddNetwork(VendorNetworkOf("office"));
    std::atomic<std::size_t> given{0};
    InThreads(6, [&](int) {
        for (int round = 0; round < 25; ++round) {
            const int started = Facade().StartAPWifiScan({OnNetwork, 1});
            EXPECT_TRUE(started == 0 || started == kNoCallback) << started;
            given += started == 0 ? 1u : 0u;
            EXPECT_EQ(Facade().StopAPWifiScan(), 0);
        }
    });
    alpha->AwaitCalls("StartAPWifiScan", given);
    EXPECT_GT(given, 0u);
    StopWhatStillStarts();
}

TEST_F(NetConnStress, ReportsDuringStartsStopsAndClears) {
    ASSERT_EQ(Facade().StartAPWifiScan({OnNetwork, 1}), 0);
    alpha->AwaitCalls("StartAPWifiScan", 1);
    alpha->AwaitRunningScans(0);
    std::atomic<bool> done{false};
    std::atomic<long> delivered{0};
    std::atomic<long> dropped{0};
    const auto report = [&] {
        const VendorSdk::WifiConfigInfo network = VendorNetworkOf("office");
        while (!done) {
            const int result = alpha->ReportNetworkNow(&network);
            EXPECT_TRUE(result == 'o' || result == 0) << result;
            ++(result == 'o' ? delivered : dropped);
        }
    };
    // On a busy machine the reporting threads may be late.
    const auto bothHappened = [&] { return delivered > 0 && dropped > 0; };
    InThreads(6, [&](int number) {
        if (number < 3) {
            report();
            return;
        }
        NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
        for (int round = 0; round < 200 || (!bothHappened() && round < 20000); ++round) {
            Facade().StartAPWifiScan({OnNetwork, 1});
            listener.ClearDeviceCallbackInfo();
            Facade().StopAPWifiScan();
            listener.SetDeviceCallbackInfo({OnNetwork, 1});
        }
        done = true;
    });
    EXPECT_EQ(received, delivered);
    EXPECT_GT(delivered, 0);
    EXPECT_GT(dropped, 0);
    StopWhatStillStarts();
}

TEST_F(NetConnStress, OperationsOnRecordsDuringStartsAndStops) {
    InThreads(6, [](int number) {
        const DeviceInfo known = DeviceOf(number % 2 == 0 ? "alpha" : "beta");
        for (int round = 0; round < 300; ++round) {
            if (number < 2) {
                Facade().StartAPWifiScan({OnNetwork, 1});
                Facade().StopAPWifiScan();
                continue;
            }
            DeviceInfo filled{};
            EXPECT_EQ(Facade().IsLocalAreaNetworkOK(known), 0);
            EXPECT_EQ(Facade().GetDeviceInfoByNet(filled), 0);
            EXPECT_EQ(Facade().PrinterAPNetConfigEvent(NetworkOf("office")), 0);
        }
    });
    StopWhatStillStarts();
}

}  // namespace
