// SPDX-License-Identifier: Apache-2.0

// What the application is told about the calls of the vendors' entry points.

#include "DeviceDiscover/vendor_activity.h"

#include <chrono>
#include <future>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr char kUsbId[] = "VID_1234&PID_ABCD";

// "<vendor> <entry point>: <result>", or how else the call stands.
std::string TextOf(const VendorCall& call) {
    const std::string ending = call.state == VendorCallState::kUnderWay ? "under way"
                               : call.state == VendorCallState::kReturned
                                   ? std::to_string(call.result)
                                   : "left by an exception";
    return std::string(call.productId) + ' ' + call.entryPoint + ": " + ending;
}

std::vector<VendorCall> Activity() {
    std::vector<VendorCall> calls;
    VendorCall call;
    for (std::size_t row = 0; row < VendorCallRows(); ++row) {
        if (ReadVendorCall(row, call)) {
            calls.push_back(call);
        }
    }
    return calls;
}

Lines ActivityText() {
    Lines texts;
    for (const VendorCall& call : Activity()) {
        texts.push_back(TextOf(call));
    }
    return texts;
}

class VendorActivityTest : public BrokerTest {
protected:
    void SetUp() override {
        VendorInfo alpha = Vendor("alpha", "scripted_all");
        alpha.usbIdList = kUsbId;
        Support({alpha});
    }

    static ScanInterface& Scan() { return ScanInterface::GetInstance(); }

    // The scan returns at a moment of its own.
    static void AwaitActivity(const std::string& text) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        const auto isThere = [&] {
            const Lines texts = ActivityText();
            return std::find(texts.begin(), texts.end(), text) != texts.end();
        };
        while (!isThere()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "never: " << text;
            std::this_thread::yield();
        }
    }
};

TEST_F(VendorActivityTest, HoldsNothingBeforeTheFirstCall) {
    Scan();
    EXPECT_THAT(ActivityText(), IsEmpty());
    EXPECT_EQ(UnrecordedVendorCalls(), 0u);
}

TEST_F(VendorActivityTest, NamesEachEntryPointAsTheModuleExportsIt) {
    DeviceInfo device = DeviceOf("alpha");
    Scan().StartDeviceScan({Application::OnDevice, 1});
    AwaitActivity("alpha StartDeviceScan: 0");
    Scan().StopDeviceScan();
    Scan().GetDeviceConnectState(device);
    Scan().BeforeConnectEventNotify(device);
    Scan().ConnectSuccessNotifyEvent(device);
    Scan().ConnectFailNotifyEvent(device);
    NetConnInterface& netConn = NetConnInterface::GetInstance();
    netConn.StartAPWifiScan({Application::OnNetwork, 1});
    AwaitActivity("alpha StartAPWifiScan: 0");
    netConn.StopAPWifiScan();
    netConn.PrinterAPNetConfigEvent(NetworkOf("net"));
    netConn.GetDeviceInfoByNet(device);
    device = DeviceOf("alpha");
    netConn.IsLocalAreaNetworkOK(device);
    UsbConnInterface& usb = UsbConnInterface::GetInstance();
    std::vector<DeviceInfo> devices;
    std::vector<WifiConfigInfo> networks;
    usb.GetDeviceInfoByUsb(devices, std::wstring(kUsbId, kUsbId + sizeof kUsbId - 1));
    usb.GetUSBWifiScan(device, networks, 0);
    usb.PrinterUSBNetConfigEvent(device, NetworkOf("net"));
    EXPECT_THAT(
        ActivityText(),
        UnorderedElementsAre("alpha StartDeviceScan: 0", "alpha StopDeviceScan: 0",
                             "alpha GetDeviceConnectState: 1", "alpha BeforeConnectEventNotify: 0",
                             "alpha ConnectSuccessNotifyEvent: 0",
                             "alpha ConnectFailNotifyEvent: 0", "alpha IsConnectCurrentWifiAP: 0",
                             "alpha StartAPWifiScan: 0", "alpha StopAPWifiScan: 0",
                             "alpha PrinterAPNetConfigEvent: 0", "alpha GetDeviceInfoByNet: 0",
                             "alpha IsLocalAreaNetworkOK: 0", "alpha GetDeviceInfoByUsb: 0",
                             "alpha USBWifiScan: 0", "alpha PrinterUSBNetConfigEvent: 0"));
    EXPECT_EQ(UnrecordedVendorCalls(), 0u);
}

TEST_F(VendorActivityTest, ACallIsUnderWayUntilTheVendorReturns) {
    Scan();
    const ScriptedModule alpha("scripted_all");
    alpha.Script("result GetDeviceConnectState 7");
    alpha.Block("GetDeviceConnectState");
    const std::uint64_t before = VendorCallClock();
    auto state = std::async(std::launch::async,
                            [] { return Scan().GetDeviceConnectState(DeviceOf("alpha")); });
    alpha.AwaitCalls("GetDeviceConnectState", 1);
    const std::vector<VendorCall> calls = Activity();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(TextOf(calls[0]), "alpha GetDeviceConnectState: under way");
    EXPECT_EQ(calls[0].result, 0);
    EXPECT_FALSE(calls[0].isOnThisThread);
    EXPECT_GE(calls[0].began, before);
    EXPECT_LE(calls[0].began, VendorCallClock());
    alpha.Unblock("GetDeviceConnectState");
    state.get();
    EXPECT_THAT(ActivityText(), ElementsAre("alpha GetDeviceConnectState: 7"));
}

TEST_F(VendorActivityTest, TheClockOfTheCallsGoesOnAtLeastEverySixteenMilliseconds) {
    const std::uint64_t before = VendorCallClock();
    std::this_thread::sleep_for(std::chrono::milliseconds(48));
    EXPECT_GE(VendorCallClock() - before, 32'000'000u);
}

TEST_F(VendorActivityTest, ACallbackSeesTheCallThatItIsMadeFromOnItsOwnThread) {
    Scan();
    const ScriptedModule alpha("scripted_all");
    alpha.AddDevice(VendorDeviceOf("alpha"));
    std::promise<std::vector<VendorCall>> seen;
    Application::AnswerWith([&](const DeviceInfo&) {
        seen.set_value(Activity());
        return 0;
    });
    Scan().StartDeviceScan({Application::OnDevice, 1});
    const std::vector<VendorCall> calls = seen.get_future().get();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(TextOf(calls[0]), "alpha StartDeviceScan: under way");
    EXPECT_TRUE(calls[0].isOnThisThread);
    AwaitActivity("alpha StartDeviceScan: 0");
}

TEST_F(VendorActivityTest, TheResultOfAScanThatHasEndedStaysWhateverIsCalledLater) {
    ScriptedModule("scripted_all").Script("result StartDeviceScan 5");
    Scan().StartDeviceScan({Application::OnDevice, 1});
    AwaitActivity("alpha StartDeviceScan: 5");
    for (std::size_t call = 0; call < 2 * VendorCallRows(); ++call) {
        Scan().GetDeviceConnectState(DeviceOf("alpha"));
    }
    EXPECT_THAT(ActivityText(),
                UnorderedElementsAre("alpha StartDeviceScan: 5", "alpha GetDeviceConnectState: 1"));
    EXPECT_EQ(UnrecordedVendorCalls(), 0u);
}

thread_local bool isPrepared = false;

TEST_F(VendorActivityTest, AThreadIsPreparedBeforeItCallsAVendor) {
    PrepareVendorThreads([] { isPrepared = true; });
    Scan();
    ScriptedModule("scripted_all").AddDevice(VendorDeviceOf("alpha"));
    std::promise<bool> seen;
    Application::AnswerWith([&](const DeviceInfo&) {
        seen.set_value(isPrepared);
        return 0;
    });
    Scan().StartDeviceScan({Application::OnDevice, 1});
    EXPECT_TRUE(seen.get_future().get());
    EXPECT_FALSE(isPrepared) << "the application's own thread is its own";
    AwaitActivity("alpha StartDeviceScan: 0");
}

TEST_F(VendorActivityTest, ThereIsNoRowBeyondTheLast) {
    VendorCall call{};
    EXPECT_FALSE(ReadVendorCall(VendorCallRows(), call));
    EXPECT_FALSE(ReadVendorCall(static_cast<std::size_t>(-1), call));
}

}  // namespace
