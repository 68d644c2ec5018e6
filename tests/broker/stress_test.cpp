// SPDX-License-Identifier: Apache-2.0

// Everything at once, many times over; the sanitizers watch.

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/support/broker_test.h"
#include "tests/support/in_threads.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;

constexpr const char* kModules[] = {"scripted_all", "scripted_all_b", "scripted_all_c"};

std::atomic<long> received{0};

int OnDevice(const DeviceInfo* device) {
    ++received;
    return device->modelID[0];
}

class Stress : public BrokerTest {
protected:
    void SetUp() override {
        RecordingLog::Discard();
        Support({Vendor("alpha", kModules[0]), Vendor("beta", kModules[1]),
                 Vendor("gamma", kModules[2])});
        ScanInterface::GetInstance();
    }

    static DiscoverScanInterface& Facade() { return DiscoverScanInterface::GetInstance(); }

    // Lets every scan that was started begin and end.
    static void Settle(std::size_t startsPerModule) {
        for (const char* name : kModules) {
            ScriptedModule(name).AwaitCalls("StartDeviceScan", startsPerModule);
        }
        EXPECT_EQ(Facade().StopDeviceScan(), 0);
        for (const char* name : kModules) {
            ScriptedModule(name).AwaitRunningScans(0);
        }
    }

    // A start that finds its callback gone gives up in the middle: how many scans it started before
    // is not known, and any of them may begin after the last stop. Stops until all has been quiet
    // for half a second.
    static void StopWhatStillStarts(std::size_t atLeastPerModule) {
        for (const char* name : kModules) {
            ScriptedModule(name).AwaitCalls("StartDeviceScan", atLeastPerModule);
        }
        int quiet = 0;
        for (int round = 0; round < 1500 && quiet < 25; ++round) {
            EXPECT_EQ(Facade().StopDeviceScan(), 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            int running = 0;
            for (const char* name : kModules) {
                running += ScriptedModule(name).RunningScans();
            }
            quiet = running == 0 ? quiet + 1 : 0;
        }
        EXPECT_EQ(quiet, 25);
    }
};

TEST_F(Stress, AThousandStartsAndStopsEachReachEveryVendor) {
    for (int round = 0; round < 1000; ++round) {
        ASSERT_EQ(Facade().StartDeviceScan({OnDevice, 1}), 0);
        ASSERT_EQ(Facade().StopDeviceScan(), 0);
    }
    Settle(1000);
    for (const char* name : kModules) {
        std::size_t starts = 0;
        std::size_t stops = 0;
        for (const std::string& call : ScriptedModule(name).CallNames()) {
            starts += call == "StartDeviceScan" ? 1u : 0u;
            stops += call == "StopDeviceScan" ? 1u : 0u;
        }
        EXPECT_EQ(starts, 1000u);
        EXPECT_EQ(stops, 1001u);
    }
}

TEST_F(Stress, StartsAndStopsFromManyThreadsWhileVendorsReport) {
    for (const char* name : kModules) {
        const ScriptedModule module(name);
        module.Script("threads 2\nrepeat 20\nuntil-stopped");
        module.AddDevice(VendorDeviceOf("alpha"));
    }
    static std::atomic<std::size_t> given{0};
    InThreads(6, [](int) {
        for (int round = 0; round < 25; ++round) {
            const int started = Facade().StartDeviceScan({OnDevice, 1});
            EXPECT_TRUE(started == 0 || started == kNoCallback) << started;
            given += started == 0 ? 1u : 0u;
            EXPECT_EQ(Facade().StopDeviceScan(), 0);
        }
    });
    EXPECT_GT(received, 0);
    StopWhatStillStarts(given);
}

TEST_F(Stress, ReportsDuringStartsStopsAndClears) {
    ASSERT_EQ(Facade().StartDeviceScan({OnDevice, 1}), 0);
    std::vector<ScriptedModule> modules;
    for (const char* name : kModules) {
        modules.emplace_back(name).AwaitCalls("StartDeviceScan", 1);
        modules.back().AwaitRunningScans(0);
    }
    std::atomic<bool> done{false};
    std::atomic<long> delivered{0};
    std::atomic<long> dropped{0};
    InThreads(6, [&](int number) {
        if (number < 3) {
            const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
            while (!done) {
                const int result = modules[static_cast<std::size_t>(number)].ReportNow(&device);
                EXPECT_TRUE(result == 'a' || result == 0) << result;
                ++(result == 'a' ? delivered : dropped);
            }
            return;
        }
        // On a busy machine the reporting threads may be late.
        const auto bothHappened = [&] { return delivered > 0 && dropped > 0; };
        for (int round = 0; round < 200 || (!bothHappened() && round < 20000); ++round) {
            Facade().StartDeviceScan({OnDevice, 1});
            ScanInterfaceListener::GetInstance().ClearDeviceCallbackInfo();
            Facade().StopDeviceScan();
            ScanInterfaceListener::GetInstance().SetDeviceCallbackInfo({OnDevice, 1});
        }
        done = true;
    });
    EXPECT_EQ(received, delivered);
    EXPECT_GT(delivered, 0);
    EXPECT_GT(dropped, 0);
    Facade().StopDeviceScan();
    for (const ScriptedModule& module : modules) {
        module.AwaitRunningScans(0);
    }
}

TEST_F(Stress, OperationsOnDevicesDuringStartsAndStops) {
    InThreads(6, [](int number) {
        const DeviceInfo device = DeviceOf(number % 2 == 0 ? "alpha" : "beta");
        for (int round = 0; round < 300; ++round) {
            if (number < 2) {
                Facade().StartDeviceScan({OnDevice, 1});
                Facade().StopDeviceScan();
            } else {
                EXPECT_EQ(Facade().GetDeviceConnectState(device), 1);
                EXPECT_EQ(Facade().BeforeConnectEventNotify(device), 0);
                EXPECT_EQ(ConnectSuccessNotifyEvent(&device), 0);
                EXPECT_EQ(ConnectFailNotifyEvent(&device), 0);
            }
        }
    });
    for (const char* name : kModules) {
        ScriptedModule(name).AwaitRunningScans(0);
    }
}

}  // namespace
