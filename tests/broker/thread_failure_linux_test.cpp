// SPDX-License-Identifier: Apache-2.0

// The system has no thread to give: what a start does then.

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// How many threads there are still to be had; negative: any number.
std::atomic<int> threadsLeft{-1};

constexpr char kStart[] = "ScanInterface::StartDeviceScan";

}  // namespace

// Stands before the system's own for every library of the process.
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* how,
                                                                     void* (*work)(void*),
                                                                     void* argument) {
    using Function = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static auto* const system = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "pthread_create"));
    if (threadsLeft == 0) {
        return EAGAIN;
    }
    if (threadsLeft > 0) {
        --threadsLeft;
    }
    return system(thread, how, work, argument);
}

namespace {

class WithoutThreads : public BrokerTest {
protected:
    void SetUp() override {
        Support({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b"),
                 Vendor("gamma", "scripted_all_c")});
        ScanInterface::GetInstance();
        ScanInterfaceListener::GetInstance();
        alpha.Script("until-stopped");
        TakeLines();
    }

    // A start for which there are only so many threads; the error it ends with.
    static std::error_code StartWith(int threads) {
        threadsLeft = threads;
        std::error_code error;
        try {
            ScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 1});
        } catch (const std::system_error& thrown) {
            error = thrown.code();
        }
        threadsLeft = -1;
        return error;
    }

    ScriptedModule alpha{"scripted_all"};
    ScriptedModule beta{"scripted_all_b"};
    ScriptedModule gamma{"scripted_all_c"};
};

TEST_F(WithoutThreads, AStartThrowsTheSystemsErrorAndStaysRegistered) {
    EXPECT_EQ(StartWith(0), std::errc::resource_unavailable_try_again);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(1, "Set info1",
                                                "ScanInterfaceListener::SetDeviceCallbackInfo")));
    EXPECT_TRUE(ScanInterfaceListener::GetInstance().GetDeviceCallbackIsEnable());
    EXPECT_THAT(alpha.Calls(), IsEmpty());
    EXPECT_THAT(gamma.Calls(), IsEmpty());
}

TEST_F(WithoutThreads, AStartLeavesTheScansRunningThatItHasStarted) {
    EXPECT_EQ(StartWith(1), std::errc::resource_unavailable_try_again);
    EXPECT_THAT(TakeOwnLines(),
                ElementsAre(LineIs(1, "Set info1", "ScanInterfaceListener::SetDeviceCallbackInfo"),
                            LineIs(1, "call Func OK", kStart)));
    alpha.AwaitRunningScans(1);
    Application::AnswerWith([](const DeviceInfo&) { return 8; });
    const VendorSdk::DeviceInfo device = VendorDeviceOf("alpha");
    EXPECT_EQ(alpha.ReportNow(&device), 8);
    EXPECT_THAT(beta.Calls(), IsEmpty());
    EXPECT_THAT(gamma.Calls(), IsEmpty());
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    alpha.AwaitRunningScans(0);
}

TEST_F(WithoutThreads, AStartFreesTheLock) {
    EXPECT_EQ(StartWith(2), std::errc::resource_unavailable_try_again);
    EXPECT_EQ(ScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 1}), 0);
    gamma.AwaitCalls("StartDeviceScan", 1);
    alpha.AwaitCalls("StartDeviceScan", 2);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    alpha.AwaitRunningScans(0);
    EXPECT_EQ(StartWith(0), std::errc::resource_unavailable_try_again);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
}

TEST_F(WithoutThreads, AStartThroughTheFacadeThrowsToo) {
    threadsLeft = 0;
    EXPECT_THROW(DiscoverScanInterface::GetInstance().StartDeviceScan({Application::OnDevice, 1}),
                 std::system_error);
    threadsLeft = -1;
    EXPECT_THAT(TakeLines(), SizeIs(2));
}

TEST_F(WithoutThreads, AStartOfAWifiScanThrowsAndFreesTheLockAndStaysRegistered) {
    NetConnInterface& dispatcher = NetConnInterface::GetInstance();
    NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
    TakeLines();
    threadsLeft = 0;
    EXPECT_THROW(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), std::system_error);
    threadsLeft = -1;
    EXPECT_THAT(
        TakeLines(),
        ElementsAre(LineIs(1, "Set info1", "NetConnInterfaceListener::SetDeviceCallbackInfo")));
    EXPECT_TRUE(listener.GetDeviceCallbackIsEnable());
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    EXPECT_EQ(dispatcher.StartAPWifiScan({Application::OnNetwork, 1}), 0);
    alpha.AwaitCalls("StartAPWifiScan", 1);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    alpha.AwaitRunningScans(0);
}

TEST_F(WithoutThreads, AnArrivalOnUsbThrowsTheSystemsErrorToTheDeviceManager) {
    Support({{"alpha", {}, {}, "VID_1234&PID_ABCD", "scripted_all", {}}});
    UsbInterfaceMonitor& monitor = UsbInterfaceMonitor::GetInstance();
    monitor.SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    TakeLines();
    const auto arrive = [&monitor] {
        return monitor.CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED,
                                    L"VID_1234&PID_ABCD");
    };
    threadsLeft = 0;
    EXPECT_THROW(arrive(), std::system_error);
    threadsLeft = -1;
    EXPECT_THAT(TakeLines(), SizeIs(2));
    EXPECT_EQ(arrive(), 0);
    alpha.AwaitCalls("GetDeviceInfoByUsb", 1);
}

}  // namespace
