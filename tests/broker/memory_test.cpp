// SPDX-License-Identifier: Apache-2.0

// Memory that runs out at each point in turn: nothing crashes, nothing hangs, no lock stays held
// and no module's reference is lost. The broker's sources are built into this program, so that its
// allocations are the program's.

#include <chrono>
#include <new>
#include <thread>

#include "broker/binding/vendor_table.h"
#include "tests/support/application.h"
#include "tests/support/broker_test.h"
#include "tests/support/failing_memory.h"
#include "tests/support/scripted_adapter.h"
#include "tests/support/scripted_host.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using FailingMemory::Then;
using ScriptedVendors::Support;
using ScriptedVendors::Vendor;

constexpr const char* kModules[] = {"scripted_all", "scripted_all_b"};
constexpr long kMostAllocations = 2000;

// Not a BrokerTest: a stream without memory is not in order when the logger gets it.
class Memory : public testing::Test {
protected:
    void SetUp() override {
        ScriptedVendors::KeepMapped(false);
        // Too long for a string's own room.
        Support({Vendor(kAlpha, kModules[0]), Vendor(kBeta, kModules[1])});
        HoldModules();
    }

    // A loaded module is not initialised again, which could not stand a failure.
    static void HoldModules() {
        for (const char* name : kModules) {
            ASSERT_NE(ScriptedVendors::Load(name), nullptr);
        }
    }

    // Does `work` again and again, each time with another allocation failing, until it needs no
    // more of them; `check` looks at what is left of each failure. How many there were.
    template <class Work, class Check>
    static long FailEach(Work work, Check check, Then then = Then::Recovers) {
        for (long number = 1; number < kMostAllocations; ++number) {
            bool thrown = false;
            {
                const FailingMemory::FailsAt failure(number, then);
                try {
                    work();
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
            }
            if (!FailingMemory::HasFailed()) {
                EXPECT_FALSE(thrown);
                return number - 1;
            }
            check(number, thrown);
        }
        ADD_FAILURE() << "no end of allocations";
        return kMostAllocations;
    }

    // How many references there are to the modules beside the test's own, which are taken anew.
    static int ForeignReferences() {
        int references = 0;
        for (const char* name : kModules) {
            references += ScriptedVendors::ReleaseAll(name) - 1;
        }
        HoldModules();
        return references;
    }

    static constexpr char kAlpha[] = "alpha, which is too long";
    static constexpr char kBeta[] = "beta, which is too long too";
};

TEST_F(Memory, ThatRunsOutWhileBindingLosesNoModule) {
    using Entry = ScanInterface::VendorEntry;
    long thrown = 0;
    const long failures = FailEach(
        [] {
            Broker::VendorTable<Entry> table;
            try {
                Broker::BindVendors(table, &VendorInfo::scanModuleName,
                                    Broker::kScanEntryPoints<Entry>, {"Test", ""});
            } catch (...) {
                Broker::ReleaseVendors(table);
                throw;
            }
            Broker::ReleaseVendors(table);
        },
        [&thrown](long number, bool hasThrown) {
            thrown += hasThrown ? 1 : 0;
            EXPECT_EQ(ForeignReferences(), 0) << "allocation " << number;
        });
    EXPECT_EQ(ForeignReferences(), 0);
    EXPECT_GT(failures, 1);
    EXPECT_GT(thrown, 1);
}

TEST_F(Memory, ThatRunsOutOnTheFirstUseLeavesTheNextOneToBeginAnew) {
    // For good, so that a line that does without its memory is no way past the next allocation.
    long thrown = 0;
    const long failures = FailEach([] { ScanInterface::GetInstance(); },
                                   [&thrown](long number, bool hasThrown) {
                                       // Once the dispatcher is there, its modules are its own.
                                       if (hasThrown) {
                                           ++thrown;
                                           EXPECT_EQ(ForeignReferences(), 0)
                                               << "allocation " << number;
                                       }
                                   },
                                   Then::StaysGone);
    EXPECT_GT(failures, 1);
    // All but what the last line would have liked to have.
    EXPECT_GE(thrown, failures - 1);
    EXPECT_EQ(ScanInterface::GetInstance().StopDeviceScan(), 0);
    EXPECT_EQ(ScanInterface::GetInstance().GetDeviceConnectState(DeviceOf(kBeta)), 1);
}

TEST_F(Memory, ThatRunsOutOnTheFirstUseOfAccessPointsLeavesTheNextOneToBeginAnew) {
    long thrown = 0;
    const long failures = FailEach([] { NetConnInterface::GetInstance(); },
                                   [&thrown](long number, bool hasThrown) {
                                       if (hasThrown) {
                                           ++thrown;
                                           EXPECT_EQ(ForeignReferences(), 0)
                                               << "allocation " << number;
                                       }
                                   },
                                   Then::StaysGone);
    EXPECT_GE(thrown, failures - 1);
    EXPECT_EQ(NetConnInterface::GetInstance().StopAPWifiScan(), 0);
}

TEST_F(Memory, ThatRunsOutDuringTheStartOfAWifiScanFreesTheLock) {
    NetConnInterface& dispatcher = NetConnInterface::GetInstance();
    int result = -1;
    long thrown = 0;
    FailEach(
        [&] {
            result = dispatcher.StartAPWifiScan({Application::OnNetwork, 1});
        },
        [&](long number, bool hasThrown) {
            thrown += hasThrown ? 1 : 0;
            EXPECT_TRUE(hasThrown || result == 0) << "allocation " << number;
            EXPECT_EQ(dispatcher.StopAPWifiScan(), 0) << "allocation " << number;
        });
    EXPECT_GT(thrown, 1);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(dispatcher.StopAPWifiScan(), 0);
    ScriptedModule(kModules[0]).AwaitCalls("StartAPWifiScan", 1);
    ScriptedModule(kModules[0]).AwaitRunningScans(0);
}

TEST_F(Memory, ThatRunsOutDuringInitLeavesTheDispatcherUsable) {
    Support({});
    ScanInterface& scan = ScanInterface::GetInstance();
    ASSERT_EQ(scan.StopDeviceScan(), kNotInitialised);
    Support({Vendor(kAlpha, kModules[0]), Vendor(kBeta, kModules[1])});
    bool bound = false;
    const long failures = FailEach(
        [&] { bound = scan.Init(); },
        [&](long number, bool thrown) { EXPECT_TRUE(thrown || bound) << "allocation " << number; });
    EXPECT_GT(failures, 1);
    EXPECT_TRUE(bound);
    EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf(kAlpha)), 1);
    EXPECT_EQ(scan.StopDeviceScan(), 0);
}

TEST_F(Memory, ThatRunsOutDuringAStartFreesTheLock) {
    ScanInterface& scan = ScanInterface::GetInstance();
    int result = -1;
    long thrown = 0;
    const long failures = FailEach(
        [&] {
            result = scan.StartDeviceScan({Application::OnDevice, 1});
        },
        [&](long number, bool hasThrown) {
            thrown += hasThrown ? 1 : 0;
            EXPECT_TRUE(hasThrown || result == 0) << "allocation " << number;
            EXPECT_EQ(scan.StopDeviceScan(), 0) << "allocation " << number;
        });
    EXPECT_GT(failures, 1);
    EXPECT_GT(thrown, 1);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(scan.StopDeviceScan(), 0);
    for (const char* name : kModules) {
        ScriptedModule(name).AwaitCalls("StartDeviceScan", 1);
        ScriptedModule(name).AwaitRunningScans(0);
    }
}

TEST_F(Memory, ThatRunsOutDuringOtherOperationsIsForgottenByTheNext) {
    ScanInterface& scan = ScanInterface::GetInstance();
    DiscoverScanInterface& facade = DiscoverScanInterface::GetInstance();
    int result = -1;
    FailEach([&] { result = facade.StopDeviceScan(); },
             [&](long, bool) { EXPECT_EQ(scan.StopDeviceScan(), 0); });
    EXPECT_EQ(result, 0);
    FailEach([&] { result = facade.GetDeviceConnectState(DeviceOf(kAlpha)); },
             [&](long, bool) { EXPECT_EQ(scan.GetDeviceConnectState(DeviceOf(kAlpha)), 1); });
    EXPECT_EQ(result, 1);
}

TEST_F(Memory, ThatRunsOutDuringAccessPointOperationsIsForgottenByTheNext) {
    NetConnInterface& dispatcher = NetConnInterface::GetInstance();
    DiscoverNetConnInterface& facade = DiscoverNetConnInterface::GetInstance();
    const WifiConfigInfo network = NetworkOf("office");
    int result = -1;
    FailEach([&] { result = facade.PrinterAPNetConfigEvent(network); },
             [&](long, bool) { EXPECT_EQ(dispatcher.PrinterAPNetConfigEvent(network), 0); });
    EXPECT_EQ(result, 0);
    DeviceInfo device{};
    FailEach([&] { result = facade.GetDeviceInfoByNet(device); },
             [&](long, bool) { EXPECT_EQ(dispatcher.GetDeviceInfoByNet(device), 0); });
    EXPECT_EQ(result, 0);
    FailEach([&] { result = facade.IsLocalAreaNetworkOK(DeviceOf(kAlpha)); },
             [&](long, bool) { EXPECT_EQ(dispatcher.IsLocalAreaNetworkOK(DeviceOf(kAlpha)), 0); });
    EXPECT_EQ(result, 0);
}

// The same vendors, with identifiers.
VendorInfo WithIds(VendorInfo vendor, const std::string& usbIdList) {
    vendor.usbIdList = usbIdList;
    return vendor;
}

class UsbMemory : public Memory {
protected:
    void SetUp() override {
        Memory::SetUp();
        Support({WithIds(Vendor(kAlpha, kModules[0]), kIds[0]),
                 WithIds(Vendor(kBeta, kModules[1]), kIds[1])});
    }

    static int Enumerate() {
        std::vector<DeviceInfo> devices;
        return UsbConnInterface::GetInstance().GetDeviceInfoByUsb(devices, kIdentifier);
    }

    static constexpr const char* kIds[] = {"VID_1234&PID_ABCD VID_1234&PID_ABCE",
                                           "VID_5678&PID_ABCD VID_5678&PID_ABCE"};
    static constexpr wchar_t kIdentifier[] = L"VID_1234&PID_ABCE";
};

TEST_F(UsbMemory, ThatRunsOutOnTheFirstUseLeavesTheNextOneToBeginAnew) {
    long thrown = 0;
    const long failures = FailEach([] { UsbConnInterface::GetInstance(); },
                                   [&thrown](long number, bool hasThrown) {
                                       if (hasThrown) {
                                           ++thrown;
                                           EXPECT_EQ(ForeignReferences(), 0)
                                               << "allocation " << number;
                                       }
                                   },
                                   Then::StaysGone);
    EXPECT_GT(failures, 10);
    EXPECT_GE(thrown, failures - 1);
    EXPECT_EQ(Enumerate(), 0);
}

TEST_F(UsbMemory, ThatRunsOutDuringInitLeavesTheDispatcherUsable) {
    Support({});
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    ASSERT_EQ(Enumerate(), kNotInitialised);
    Support({WithIds(Vendor(kAlpha, kModules[0]), kIds[0]),
             WithIds(Vendor(kBeta, kModules[1]), kIds[1])});
    bool bound = false;
    FailEach(
        [&] { bound = dispatcher.Init(); },
        [&](long number, bool thrown) { EXPECT_TRUE(thrown || bound) << "allocation " << number; });
    EXPECT_TRUE(bound);
    EXPECT_EQ(Enumerate(), 0);
}

TEST_F(UsbMemory, ThatRunsOutDuringOperationsIsForgottenByTheNext) {
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    DiscoverUsbInterface& facade = DiscoverUsbInterface::GetInstance();
    const ScriptedModule alpha(kModules[0]);
    alpha.AddDevice(VendorDeviceOf(kAlpha));
    alpha.AddNetwork(VendorNetworkOf("office"));
    ScriptedHost::Plugged({{kIdentifier, {1, 1}}});
    PrinterSdk::PrinterProperty printer;
    printer.serialNumber = L"a serial number, which is too long";
    printer.connectType = PrinterSdk::kConnectTypeUsb;
    ScriptedAdapter::Know({printer});
    int result = -1;
    std::vector<DeviceInfo> devices;
    FailEach([&] { result = facade.GetDeviceInfoByUsb(devices); },
             [&](long, bool) { EXPECT_EQ(Enumerate(), 0); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(BytesOf(devices.back()), BytesOf(DeviceOf(kAlpha)));
    std::vector<WifiConfigInfo> networks;
    FailEach([&] { result = facade.GetUSBWifiScan(DeviceOf(kAlpha), networks, 0); },
             [&](long, bool) { EXPECT_EQ(Enumerate(), 0); });
    EXPECT_EQ(result, 0);
    EXPECT_STREQ(networks.back().ssid, "office");
    const WifiConfigInfo network = NetworkOf("office");
    FailEach([&] { result = facade.SetDeviceAPNetConfigByUsb(DeviceOf(kAlpha), network); },
             [&](long, bool) {
                 EXPECT_EQ(dispatcher.PrinterUSBNetConfigEvent(DeviceOf(kAlpha), network), 0);
             });
    EXPECT_EQ(result, 0);
    std::vector<DeviceUsbInfo> printers;
    FailEach([&] { result = facade.GetDeviceNoConfigNet(printers); }, [](long, bool) {});
    EXPECT_EQ(result, 0);
    EXPECT_STREQ(printers.back().deviceSN, "a serial number, which is too long");
}

TEST_F(UsbMemory, IsNotAskedForTheRoomThatVendorsAreGiven) {
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    std::vector<WifiConfigInfo> networks;
    // The first time is not like the others.
    ASSERT_EQ(Enumerate(), 0);
    ASSERT_EQ(dispatcher.GetUSBWifiScan(DeviceOf(kAlpha), networks, 0), 0);
    FailingMemory::LargestAllocation();
    EXPECT_EQ(Enumerate(), 0);
    EXPECT_LT(FailingMemory::LargestAllocation(), 64 * sizeof(DeviceInfo));
    EXPECT_EQ(dispatcher.GetUSBWifiScan(DeviceOf(kAlpha), networks, 0), 0);
    EXPECT_LT(FailingMemory::LargestAllocation(), 128 * sizeof(WifiConfigInfo));
}

TEST_F(UsbMemory, ThatRunsOutDuringAnArrivalStartsNoThread) {
    UsbInterfaceMonitor& monitor = UsbInterfaceMonitor::GetInstance();
    monitor.SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    ScriptedModule(kModules[0]).AddDevice(VendorDeviceOf(kAlpha));
    int result = -1;
    long thrown = 0;
    long started = 0;
    const long failures = FailEach(
        [&] {
            result =
                monitor.CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, kIdentifier);
        },
        [&](long, bool hasThrown) { hasThrown ? ++thrown : ++started; });
    EXPECT_GT(thrown, 1);
    EXPECT_EQ(thrown + started, failures);
    EXPECT_EQ(result, 0);
    // Each that was not refused, and the last.
    ScriptedModule(kModules[0])
        .AwaitCalls("GetDeviceInfoByUsb", static_cast<std::size_t>(started) + 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(Application::Reports().size(), static_cast<std::size_t>(started) + 1);
}

TEST_F(UsbMemory, ThatRunsOutOnTheThreadOfAnArrivalCostsThatArrival) {
    using namespace std::chrono_literals;
    UsbInterfaceMonitor& monitor = UsbInterfaceMonitor::GetInstance();
    monitor.SetDeviceStateCallbackInfo({Application::OnDevice, 1});
    // Bound: the thread sanitizer takes two attempts to make one singleton for a race.
    UsbConnInterface::GetInstance();
    const ScriptedModule alpha(kModules[0]);
    alpha.AddDevice(VendorDeviceOf(kAlpha));
    monitor.CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, kIdentifier);
    // It has begun to wait.
    std::this_thread::sleep_for(300ms);
    {
        const FailingMemory::FailsForOthers memory;
        const long before = FailingMemory::FailedForOthers();
        const auto giveUp = std::chrono::steady_clock::now() + 30s;
        while (FailingMemory::FailedForOthers() == before) {
            ASSERT_LT(std::chrono::steady_clock::now(), giveUp);
            std::this_thread::sleep_for(5ms);
        }
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_TRUE(Application::Reports().empty());
    EXPECT_TRUE(alpha.Calls().empty());
    monitor.CallBackFunc({}, PrinterUsbApiStruct::DEVICE_STATE_ARRIVED, kIdentifier);
    const auto giveUp = std::chrono::steady_clock::now() + 30s;
    while (Application::Reports().empty() && std::chrono::steady_clock::now() < giveUp) {
        std::this_thread::sleep_for(5ms);
    }
    EXPECT_EQ(Application::Reports().size(), 1u);
    EXPECT_EQ(alpha.Calls().size(), 1u);
}

}  // namespace
