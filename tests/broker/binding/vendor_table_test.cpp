// SPDX-License-Identifier: Apache-2.0

// The tables of all three families: what is looked up, in which order, into which slot, what is
// logged, and how a table is released.

#include "broker/binding/vendor_table.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>

#include "DeviceDiscover/scan.h"
#include "broker/binding/table_gate.h"
#include "tests/support/broker_test.h"

// What the program itself exports is no vendor's.
extern "C" {
PLATFORM_EXPORT int StopDeviceScan();
int StopDeviceScan() {
    return 99;
}
PLATFORM_EXPORT int StopAPWifiScan();
int StopAPWifiScan() {
    return 99;
}
PLATFORM_EXPORT int USBWifiScan();
int USBWifiScan() {
    return 99;
}
}

// Declares the slot of one row of a list.
#define BROKER_SLOT(slot, name, message) VendorSdk::name##Function* slot = nullptr;

namespace {

using ScriptedVendors::Support;
using ScriptedVendors::Vendor;
using testing::ElementsAre;
using testing::IsEmpty;

struct ScanEntry {
    HINSTANCE module = nullptr;
    BROKER_SCAN_ENTRY_POINTS(BROKER_SLOT)
};
static_assert(sizeof(ScanEntry) == 56);
static_assert(offsetof(ScanEntry, module) == 0 && offsetof(ScanEntry, StartDeviceScan) == 8);
static_assert(offsetof(ScanEntry, StopDeviceScan) == 16);
static_assert(offsetof(ScanEntry, GetDeviceConnectState) == 24);
static_assert(offsetof(ScanEntry, BeforeConnectEventNotify) == 32);
static_assert(offsetof(ScanEntry, ConnectSuccessNotifyEvent) == 40);
static_assert(offsetof(ScanEntry, ConnectFailNotifyEvent) == 48);

using ExportedEntry = PrinterDeviceDiscoverSdk::ScanInterface::VendorEntry;
static_assert(sizeof(ExportedEntry) == sizeof(ScanEntry));
static_assert(offsetof(ExportedEntry, StartDeviceScan) == 8);
static_assert(offsetof(ExportedEntry, ConnectFailNotifyEvent) == 48);

struct NetConnEntry {
    HINSTANCE module = nullptr;
    BROKER_NETCONN_ENTRY_POINTS(BROKER_SLOT)
};
static_assert(sizeof(NetConnEntry) == 56);
static_assert(offsetof(NetConnEntry, StartAPWifiScan) == 8);
static_assert(offsetof(NetConnEntry, StopAPWifiScan) == 16);
static_assert(offsetof(NetConnEntry, PrinterAPNetConfigEvent) == 24);
static_assert(offsetof(NetConnEntry, IsLocalAreaNetworkOK) == 32);
static_assert(offsetof(NetConnEntry, GetDeviceInfoByNet) == 40);
static_assert(offsetof(NetConnEntry, IsConnectCurrentWifiAP) == 48);

struct UsbEntry {
    HINSTANCE module = nullptr;
    BROKER_USB_ENTRY_POINTS(BROKER_SLOT)
};
static_assert(sizeof(UsbEntry) == 32);
static_assert(offsetof(UsbEntry, pGetDeviceInfoByUsb) == 8);
static_assert(offsetof(UsbEntry, pGetUSBWifiScan) == 16);
static_assert(offsetof(UsbEntry, pPrinterUSBNetConfigEvent) == 24);

constexpr Broker::Location kHere{"PrinterDeviceDiscoverSdk::Sample::Bind", ""};

std::string Logged(int level, const std::string& message) {
    return LineIs(level, message, "Sample::Bind");
}

// The symbol of the module of every entry point.
template <class Function>
Function* Symbol(const char* name) {
    const FARPROC symbol = GetProcAddress(ScriptedVendors::Given("every_entry_point"), name);
    EXPECT_NE(symbol, nullptr) << name;
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(symbol));
}

class VendorTables : public BrokerTest {
protected:
    // The table entry of the vendor in that module, bound with the family's list.
    template <class Entry, std::size_t Count>
    static Entry EntryOf(const std::string& moduleName,
                         const Broker::EntryPointList<Entry, Count>& list,
                         std::string VendorInfo::*moduleNameField) {
        Support({{"alpha", "", "", "", moduleName, moduleName}});
        Broker::VendorTable<Entry> table;
        EXPECT_TRUE(Broker::BindVendors(table, moduleNameField, list, kHere));
        EXPECT_EQ(table.size(), 1u);
        return table.at("alpha");
    }
};

TEST_F(VendorTables, OfTheScanFindEachExportByItsName) {
    const auto entry = EntryOf("every_entry_point", Broker::kScanEntryPoints<ScanEntry>,
                               &VendorInfo::scanModuleName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(3, "productIdalpha")));
    EXPECT_EQ(entry.module, ScriptedVendors::Given("every_entry_point"));
    EXPECT_EQ(entry.StartDeviceScan,
              Symbol<int(VendorSdk::DeviceCallbackInfo*)>("StartDeviceScan"));
    EXPECT_EQ(entry.StopDeviceScan, Symbol<int()>("StopDeviceScan"));
    using OnDevice = int(const VendorSdk::DeviceInfo*);
    EXPECT_EQ(entry.GetDeviceConnectState, Symbol<OnDevice>("GetDeviceConnectState"));
    EXPECT_EQ(entry.BeforeConnectEventNotify, Symbol<OnDevice>("BeforeConnectEventNotify"));
    EXPECT_EQ(entry.ConnectSuccessNotifyEvent, Symbol<OnDevice>("ConnectSuccessNotifyEvent"));
    EXPECT_EQ(entry.ConnectFailNotifyEvent, Symbol<OnDevice>("ConnectFailNotifyEvent"));
}

TEST_F(VendorTables, OfTheNetworkFindEachExportByItsName) {
    const auto entry = EntryOf("every_entry_point", Broker::kNetConnEntryPoints<NetConnEntry>,
                               &VendorInfo::vendorName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(3, "productIdalpha")));
    EXPECT_EQ(entry.StartAPWifiScan, Symbol<int(VendorSdk::WifiCallbackInfo*)>("StartAPWifiScan"));
    EXPECT_EQ(entry.StopAPWifiScan, Symbol<int()>("StopAPWifiScan"));
    EXPECT_EQ(entry.PrinterAPNetConfigEvent,
              Symbol<int(VendorSdk::WifiConfigInfo*)>("PrinterAPNetConfigEvent"));
    EXPECT_EQ(entry.IsLocalAreaNetworkOK,
              Symbol<int(VendorSdk::DeviceInfo*)>("IsLocalAreaNetworkOK"));
    EXPECT_EQ(entry.GetDeviceInfoByNet, Symbol<int(VendorSdk::DeviceInfo*)>("GetDeviceInfoByNet"));
    EXPECT_EQ(entry.IsConnectCurrentWifiAP, Symbol<int()>("IsConnectCurrentWifiAP"));
}

TEST_F(VendorTables, OfUsbFindEachExportByItsName) {
    const auto entry =
        EntryOf("every_entry_point", Broker::kUsbEntryPoints<UsbEntry>, &VendorInfo::vendorName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(3, "productIdalpha")));
    EXPECT_EQ(entry.pGetDeviceInfoByUsb,
              (Symbol<int(std::uint16_t, std::uint16_t, VendorSdk::DeviceInfo*, std::int32_t*)>(
                  "GetDeviceInfoByUsb")));
    EXPECT_EQ(entry.pGetUSBWifiScan,
              (Symbol<int(const VendorSdk::DeviceInfo*, std::int32_t, VendorSdk::WifiConfigInfo*,
                          std::int32_t*)>("USBWifiScan")));
    EXPECT_EQ(entry.pPrinterUSBNetConfigEvent,
              (Symbol<int(const VendorSdk::DeviceInfo*, const VendorSdk::WifiConfigInfo*)>(
                  "PrinterUSBNetConfigEvent")));
}

TEST_F(VendorTables, OfTheScanLogWhatAModuleLacksInSlotOrder) {
    const auto entry =
        EntryOf("scripted_none", Broker::kScanEntryPoints<ScanEntry>, &VendorInfo::scanModuleName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(4, "startDeviceScan is nullptr, err:"),
                                         Logged(4, "stopDeviceScan is nullptr, err:"),
                                         Logged(4, "getDeviceConnectState is nullptr, err:"),
                                         Logged(4, "beforeConnectEventNotify is nullptr, err:"),
                                         Logged(4, "connectSuccessNotifyEvent is nullptr, err:"),
                                         Logged(4, "connectFailNotifyEvent is nullptr, err:"),
                                         Logged(3, "productIdalpha")));
    EXPECT_EQ(entry.StartDeviceScan, nullptr);
    EXPECT_EQ(entry.ConnectFailNotifyEvent, nullptr);
}

TEST_F(VendorTables, OfTheNetworkLogWhatAModuleLacksInSlotOrder) {
    EntryOf("scripted_none", Broker::kNetConnEntryPoints<NetConnEntry>, &VendorInfo::vendorName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(4, "startApWifiScan is nullptr, err:"),
                                         Logged(4, "stopApWifiScan is nullptr, err:"),
                                         Logged(4, "printerApNetConfigEvent is nullptr, err:"),
                                         Logged(4, "isLocalAreaNetworkOK is nullptr, err:"),
                                         Logged(4, "getDeviceInfoByNet is nullptr, err:"),
                                         Logged(4, "isConnectCurrentWifiAp is nullptr, err:"),
                                         Logged(3, "productIdalpha")));
}

TEST_F(VendorTables, OfUsbLogWhatAModuleLacksInAnOrderOfTheirOwn) {
    EntryOf("scripted_none", Broker::kUsbEntryPoints<UsbEntry>, &VendorInfo::vendorName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(4, "pGetDeviceInfoByUsb is nullptr, err:"),
                                         Logged(4, "pPrinterUSBNetConfigEvent is nullptr, err:"),
                                         Logged(4, "pGetUSBWifiScan is nullptr, err:"),
                                         Logged(3, "productIdalpha")));
}

TEST_F(VendorTables, OfANullHandleLookUpNothingNotEvenInTheProgram) {
    ScriptedVendors::GiveNull("scripted_all");
    const auto scan =
        EntryOf("scripted_all", Broker::kScanEntryPoints<ScanEntry>, &VendorInfo::scanModuleName);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(4, "startDeviceScan is nullptr, err:"),
                                         Logged(4, "stopDeviceScan is nullptr, err:"),
                                         Logged(4, "getDeviceConnectState is nullptr, err:"),
                                         Logged(4, "beforeConnectEventNotify is nullptr, err:"),
                                         Logged(4, "connectSuccessNotifyEvent is nullptr, err:"),
                                         Logged(4, "connectFailNotifyEvent is nullptr, err:"),
                                         Logged(3, "productIdalpha")));
    EXPECT_EQ(scan.StopDeviceScan, nullptr);
    const auto network =
        EntryOf("scripted_all", Broker::kNetConnEntryPoints<NetConnEntry>, &VendorInfo::vendorName);
    EXPECT_EQ(network.StopAPWifiScan, nullptr);
    const auto usb =
        EntryOf("scripted_all", Broker::kUsbEntryPoints<UsbEntry>, &VendorInfo::vendorName);
    EXPECT_EQ(usb.pGetUSBWifiScan, nullptr);
}

TEST_F(VendorTables, AskForTheModuleThatTheirFamilyNames) {
    Support({{"alpha", "", "", "", "scripted_none", "scripted_all"}});
    Broker::VendorTable<UsbEntry> usb;
    Broker::BindVendors(usb, &VendorInfo::vendorName, Broker::kUsbEntryPoints<UsbEntry>, kHere);
    Broker::VendorTable<ScanEntry> scan;
    Broker::BindVendors(scan, &VendorInfo::scanModuleName, Broker::kScanEntryPoints<ScanEntry>,
                        kHere);
    EXPECT_THAT(ScriptedVendors::Requests(),
                ElementsAre("GetCurrentSupportList", "GetDeviceHandle scripted_none",
                            "GetCurrentSupportList", "GetDeviceHandle scripted_all"));
}

TEST_F(VendorTables, StayAsTheyAreWhenTheListIsEmpty) {
    Support({Vendor("alpha", "scripted_all")});
    Broker::VendorTable<ScanEntry> table;
    const auto bind = [&] {
        return Broker::BindVendors(table, &VendorInfo::scanModuleName,
                                   Broker::kScanEntryPoints<ScanEntry>, kHere);
    };
    ASSERT_TRUE(bind());
    Support({});
    TakeLines();
    EXPECT_FALSE(bind());
    EXPECT_EQ(table.size(), 1u);
    EXPECT_THAT(TakeLines(), ElementsAre(Logged(4, "vendorList is empty. DeleteAllVendor")));
}

class Release : public VendorTables {
protected:
    void SetUp() override { ScriptedVendors::KeepMapped(false); }

    Broker::VendorTable<ScanEntry> Bound(std::vector<VendorInfo> vendors) {
        Support(std::move(vendors));
        Broker::VendorTable<ScanEntry> table;
        Broker::BindVendors(table, &VendorInfo::scanModuleName, Broker::kScanEntryPoints<ScanEntry>,
                            kHere);
        TakeLines();
        return table;
    }
};

TEST_F(Release, GivesBackEveryModuleOnceAndEmptiesTheTable) {
    auto table = Bound({Vendor("alpha", "scripted_all"), Vendor("beta", "scripted_all_b"),
                        Vendor("gamma", "scripted_all_b")});
    Broker::ReleaseVendors(table);
    EXPECT_THAT(table, IsEmpty());
    EXPECT_THAT(TakeLines(), IsEmpty());
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all"), 0);
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all_b"), 0);
}

TEST_F(Release, LeavesTheReferencesOfOthersAlone) {
    auto table = Bound({Vendor("alpha", "scripted_all")});
    ScriptedVendors::Load("scripted_all");
    ScriptedVendors::Load("scripted_all");
    Broker::ReleaseVendors(table);
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all"), 2);
}

TEST_F(Release, LeavesTheModuleOfADroppedDuplicateLoaded) {
    auto table = Bound({Vendor("alpha", "scripted_all"), Vendor("alpha", "scripted_all_b"),
                        Vendor("alpha", "scripted_all")});
    EXPECT_EQ(table.size(), 1u);
    Broker::ReleaseVendors(table);
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all"), 1);
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all_b"), 1);
}

TEST_F(Release, OfAnEmptyTableDoesNothing) {
    Broker::VendorTable<ScanEntry> table;
    Broker::ReleaseVendors(table);
    EXPECT_THAT(table, IsEmpty());
}

TEST_F(Release, PassesOverAnEntryWithoutAModule) {
    auto table = Bound({Vendor("beta", "scripted_all")});
    table.emplace("alpha", ScanEntry{});
    Broker::ReleaseVendors(table);
    EXPECT_THAT(table, IsEmpty());
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all"), 0);
}

TEST_F(Release, CanBeFollowedByBindingAgain) {
    auto table = Bound({Vendor("alpha", "scripted_all")});
    Broker::ReleaseVendors(table);
    table = Bound({Vendor("alpha", "scripted_all")});
    EXPECT_EQ(table.at("alpha").StopDeviceScan(), 0);
    Broker::ReleaseVendors(table);
    EXPECT_EQ(ScriptedVendors::ReleaseAll("scripted_all"), 0);
}

TEST(TableGate, LetsAnyoneInUntilItIsClosed) {
    Broker::TableGate gate;
    {
        const Broker::TableUse first(gate);
        const Broker::TableUse second(gate);
        EXPECT_TRUE(first);
        EXPECT_TRUE(second);
    }
    gate.Close();
    EXPECT_FALSE(Broker::TableUse(gate));
    EXPECT_FALSE(Broker::TableUse(gate));
    gate.Close();
}

TEST(TableGate, IsClosedOnceNobodyIsInside) {
    Broker::TableGate gate;
    std::atomic<bool> inside{false};
    std::atomic<bool> left{false};
    std::thread user([&] {
        const Broker::TableUse use(gate);
        EXPECT_TRUE(use);
        inside = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        left = true;
    });
    while (!inside) {
        std::this_thread::yield();
    }
    gate.Close();
    EXPECT_TRUE(left);
    user.join();
}

TEST(TableGate, DoesNotWaitForEverForAThreadThatTheSystemHasEnded) {
    Broker::TableGate gate;
    const Broker::TableUse neverLeaves(gate);
    const auto start = std::chrono::steady_clock::now();
    gate.Close();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_FALSE(Broker::TableUse(gate));
}

}  // namespace
