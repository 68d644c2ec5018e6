// SPDX-License-Identifier: Apache-2.0

// The order of members that the interface gives its classes and the application's records, and what
// two private operations promise.

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "tests/support/application.h"
#include "tests/support/broker_test.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;

static_assert(std::is_standard_layout_v<VendorInfo>);
static_assert(sizeof(VendorInfo) == 6 * sizeof(std::string));
static_assert(offsetof(VendorInfo, productId) == 0);
static_assert(offsetof(VendorInfo, reserved1) == 1 * sizeof(std::string));
static_assert(offsetof(VendorInfo, reserved2) == 2 * sizeof(std::string));
static_assert(offsetof(VendorInfo, usbIdList) == 3 * sizeof(std::string));
static_assert(offsetof(VendorInfo, vendorName) == 4 * sizeof(std::string));
static_assert(offsetof(VendorInfo, scanModuleName) == 5 * sizeof(std::string));

using Entry = ScanInterface::VendorEntry;
static_assert(std::is_standard_layout_v<Entry> && sizeof(Entry) == 56);
static_assert(offsetof(Entry, module) == 0 && offsetof(Entry, StartDeviceScan) == 8);
static_assert(offsetof(Entry, StopDeviceScan) == 16);
static_assert(offsetof(Entry, GetDeviceConnectState) == 24);
static_assert(offsetof(Entry, BeforeConnectEventNotify) == 32);
static_assert(offsetof(Entry, ConnectSuccessNotifyEvent) == 40);
static_assert(offsetof(Entry, ConnectFailNotifyEvent) == 48);

static_assert(std::is_standard_layout_v<NetConnInterfaceItem>);
static_assert(sizeof(NetConnInterfaceItem) == 56 && offsetof(NetConnInterfaceItem, module) == 0);
static_assert(offsetof(NetConnInterfaceItem, StartAPWifiScan) == 8);
static_assert(offsetof(NetConnInterfaceItem, StopAPWifiScan) == 16);
static_assert(offsetof(NetConnInterfaceItem, PrinterAPNetConfigEvent) == 24);
static_assert(offsetof(NetConnInterfaceItem, IsLocalAreaNetworkOK) == 32);
static_assert(offsetof(NetConnInterfaceItem, GetDeviceInfoByNet) == 40);
static_assert(offsetof(NetConnInterfaceItem, IsConnectCurrentWifiAP) == 48);

using UsbEntry = UsbConnInterface::VendorEntry;
static_assert(std::is_standard_layout_v<UsbEntry> && sizeof(UsbEntry) == 32);
static_assert(offsetof(UsbEntry, module) == 0 && offsetof(UsbEntry, pGetDeviceInfoByUsb) == 8);
static_assert(offsetof(UsbEntry, pGetUSBWifiScan) == 16);
static_assert(offsetof(UsbEntry, pPrinterUSBNetConfigEvent) == 24);

// Without padding but for the last byte: what is filled is what is there.
static_assert(std::is_standard_layout_v<DeviceUsbInfo> && std::is_trivial_v<DeviceUsbInfo>);
static_assert(sizeof(DeviceUsbInfo) == 230 && alignof(DeviceUsbInfo) == 2);
static_assert(offsetof(DeviceUsbInfo, code1) == offsetof(DeviceInfo, code1));
static_assert(offsetof(DeviceUsbInfo, code2) == offsetof(DeviceInfo, code2));
static_assert(offsetof(DeviceUsbInfo, deviceSN) == offsetof(DeviceInfo, deviceSN));
static_assert(offsetof(DeviceUsbInfo, modelID) == offsetof(DeviceInfo, modelID));
static_assert(offsetof(DeviceUsbInfo, extra1) == offsetof(DeviceInfo, extra1));
static_assert(offsetof(DeviceUsbInfo, extra2) == offsetof(DeviceInfo, extra2));
static_assert(offsetof(DeviceUsbInfo, extra3) == offsetof(DeviceInfo, extra3));
static_assert(offsetof(DeviceUsbInfo, isNetConfigured) == sizeof(DeviceInfo));
static_assert(std::is_same_v<decltype(DeviceUsbInfo::isNetConfigured), bool>);

using PrinterDiscoverAPI::DeviceStateChangeCallbackInfo;
static_assert(sizeof(DeviceStateChangeCallbackInfo) == 16);
static_assert(offsetof(DeviceStateChangeCallbackInfo, callback) == 0);
static_assert(offsetof(DeviceStateChangeCallbackInfo, value) == 8);
static_assert(sizeof(PrinterUsbApiStruct::EmDeviceState) == 4);
static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4);

static_assert(!std::is_polymorphic_v<DiscoverUsbInterface>);
static_assert(!std::is_polymorphic_v<UsbConnInterface> &&
              !std::is_polymorphic_v<UsbInterfaceMonitor>);
static_assert(sizeof(DiscoverUsbInterface) == sizeof(DeviceStateChangeCallbackInfo));
static_assert(sizeof(UsbInterfaceMonitor) == sizeof(DeviceCallbackInfo));

static_assert(std::is_empty_v<DiscoverScanInterface> && std::is_empty_v<DiscoverBasic>);
static_assert(std::is_empty_v<DiscoverNetConnInterface>);
static_assert(!std::is_polymorphic_v<NetConnInterface>);
static_assert(!std::is_polymorphic_v<NetConnInterfaceListener>);
static_assert(std::is_standard_layout_v<NetConnInterfaceListener>);
static_assert(sizeof(NetConnInterfaceListener) == 32);

using PrinterWifiApiStruct::WlanInfoData;
static_assert(offsetof(WlanInfoData, ssid) == 0);
static_assert(offsetof(WlanInfoData, attributes) == sizeof(std::wstring));
static_assert(offsetof(WlanInfoData, excludeFlag) == sizeof(std::wstring) + 8);
static_assert(sizeof(WlanInfoData) == 48);
static_assert(!std::is_polymorphic_v<ScanInterface>);
static_assert(!std::is_polymorphic_v<ScanInterfaceListener>);
static_assert(std::is_standard_layout_v<ScanInterfaceListener>);
static_assert(sizeof(ScanInterfaceListener) == 32);

// Explicit instantiation may name private members: each gives its own away through Of.
template <class Tag>
struct Private {
    static typename Tag::Member member;
};
template <class Tag>
typename Tag::Member Private<Tag>::member;

template <class Tag, typename Tag::Member Value>
struct Reveal {
    struct Filler {
        Filler() { Private<Tag>::member = Value; }
    };
    static Filler filler;
};
template <class Tag, typename Tag::Member Value>
typename Reveal<Tag, Value>::Filler Reveal<Tag, Value>::filler;

struct Initialised {
    using Member = bool ScanInterface::*;
};
struct Mutex {
    using Member = std::mutex ScanInterface::*;
};
struct Vendors {
    using Member = std::map<std::string, Entry> ScanInterface::*;
};
template struct Reveal<Initialised, &ScanInterface::initialised>;
template struct Reveal<Mutex, &ScanInterface::mutex>;
template struct Reveal<Vendors, &ScanInterface::vendors>;

struct NetConnInitialised {
    using Member = bool NetConnInterface::*;
};
struct NetConnMutex {
    using Member = std::mutex NetConnInterface::*;
};
struct NetConnVendors {
    using Member = std::map<std::string, NetConnInterfaceItem> NetConnInterface::*;
};
template struct Reveal<NetConnInitialised, &NetConnInterface::initialised>;
template struct Reveal<NetConnMutex, &NetConnInterface::mutex>;
template struct Reveal<NetConnVendors, &NetConnInterface::vendors>;

struct UsbInitialised {
    using Member = bool UsbConnInterface::*;
};
struct UsbMutex {
    using Member = std::mutex UsbConnInterface::*;
};
struct UsbIdMap {
    using Member = std::map<std::string, std::string> UsbConnInterface::*;
};
struct UsbVendors {
    using Member = std::map<std::string, UsbEntry> UsbConnInterface::*;
};
template struct Reveal<UsbInitialised, &UsbConnInterface::initialised>;
template struct Reveal<UsbMutex, &UsbConnInterface::mutex>;
template struct Reveal<UsbIdMap, &UsbConnInterface::usbIdMap>;
template struct Reveal<UsbVendors, &UsbConnInterface::vendors>;

struct UsbSplit {
    using Member = bool (UsbConnInterface::*)(const std::string&, std::vector<std::string>&);
};
struct UsbUnInit {
    using Member = void (UsbConnInterface::*)();
};
template struct Reveal<UsbSplit, &UsbConnInterface::split>;
template struct Reveal<UsbUnInit, &UsbConnInterface::UnInit>;

template <class Tag, class Object>
std::size_t OffsetIn(const Object& object) {
    const void* const member = &(object.*Private<Tag>::member);
    return static_cast<std::size_t>(static_cast<const char*>(member) -
                                    reinterpret_cast<const char*>(&object));
}

class Layout : public BrokerTest {};

TEST_F(Layout, OfTheDispatcherIsTheFlagTheMutexAndTheTable) {
    const ScanInterface& scan = ScanInterface::GetInstance();
    constexpr std::size_t mutexAt = alignof(std::mutex);
    EXPECT_EQ(OffsetIn<Initialised>(scan), 0u);
    EXPECT_EQ(OffsetIn<Mutex>(scan), mutexAt);
    EXPECT_EQ(OffsetIn<Vendors>(scan), mutexAt + sizeof(std::mutex));
    EXPECT_EQ(sizeof scan, mutexAt + sizeof(std::mutex) + sizeof(std::map<std::string, Entry>));
}

TEST_F(Layout, OfTheAccessPointDispatcherIsTheSame) {
    const NetConnInterface& dispatcher = NetConnInterface::GetInstance();
    constexpr std::size_t mutexAt = alignof(std::mutex);
    EXPECT_EQ(OffsetIn<NetConnInitialised>(dispatcher), 0u);
    EXPECT_EQ(OffsetIn<NetConnMutex>(dispatcher), mutexAt);
    EXPECT_EQ(OffsetIn<NetConnVendors>(dispatcher), mutexAt + sizeof(std::mutex));
    EXPECT_EQ(sizeof dispatcher, sizeof(ScanInterface));
}

TEST_F(Layout, OfTheUsbDispatcherHasTheIdentifiersBeforeTheTable) {
    const UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    constexpr std::size_t mutexAt = alignof(std::mutex);
    constexpr std::size_t mapAt = mutexAt + sizeof(std::mutex);
    constexpr std::size_t tableAt = mapAt + sizeof(std::map<std::string, std::string>);
    EXPECT_EQ(OffsetIn<UsbInitialised>(dispatcher), 0u);
    EXPECT_EQ(OffsetIn<UsbMutex>(dispatcher), mutexAt);
    EXPECT_EQ(OffsetIn<UsbIdMap>(dispatcher), mapAt);
    EXPECT_EQ(OffsetIn<UsbVendors>(dispatcher), tableAt);
    EXPECT_EQ(sizeof dispatcher, tableAt + sizeof(std::map<std::string, UsbEntry>));
}

// One map entry for each identifier, with the vendor that has it; two blanks make no empty piece.
TEST_F(Layout, OfTheIdentifiersIsTheTextAndItsProductId) {
    ScriptedVendors::Support({{"alpha", {}, {}, "  ID_1  ID_2 ", "scripted_all", {}}});
    const UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    const std::map<std::string, std::string> expected{{"ID_1", "alpha"}, {"ID_2", "alpha"}};
    EXPECT_EQ(dispatcher.*Private<UsbIdMap>::member, expected);
    EXPECT_EQ((dispatcher.*Private<UsbVendors>::member).size(), 1u);
    EXPECT_TRUE(dispatcher.*Private<UsbInitialised>::member);
}

// The pieces of `text`, behind one that is there already, and whether there was a text at all.
std::pair<bool, std::vector<std::string>> SplitBehindOne(const std::string& text) {
    std::vector<std::string> pieces{"kept"};
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    const bool result = (dispatcher.*Private<UsbSplit>::member)(text, pieces);
    return {result, pieces};
}

class UsbInside : public BrokerTest {};

TEST_F(UsbInside, CutsATextIntoPiecesThatItAppends) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(SplitBehindOne(""), std::pair(false, Pieces({"kept"})));
    EXPECT_EQ(SplitBehindOne(" "), std::pair(true, Pieces({"kept"})));
    EXPECT_EQ(SplitBehindOne("   "), std::pair(true, Pieces({"kept"})));
    EXPECT_EQ(SplitBehindOne("a"), std::pair(true, Pieces({"kept", "a"})));
    EXPECT_EQ(SplitBehindOne(" a  b "), std::pair(true, Pieces({"kept", "a", "b"})));
    EXPECT_EQ(SplitBehindOne("kept kept"), std::pair(true, Pieces({"kept", "kept", "kept"})));
    EXPECT_EQ(SplitBehindOne("a\tb\n"), std::pair(true, Pieces({"kept", "a\tb\n"})));
}

TEST_F(UsbInside, KeepsItsIdentifiersAndItsFlagWhenTheModulesAreGivenBack) {
    ScriptedVendors::Support({{"alpha", {}, {}, "VID_1234&PID_ABCD", "scripted_all", {}}});
    UsbConnInterface& dispatcher = UsbConnInterface::GetInstance();
    const std::map<std::string, std::string> usbIds{{"VID_1234&PID_ABCD", "alpha"}};
    ASSERT_EQ(dispatcher.*Private<UsbIdMap>::member, usbIds);
    TakeLines();
    (dispatcher.*Private<UsbUnInit>::member)();
    EXPECT_TRUE((dispatcher.*Private<UsbVendors>::member).empty());
    EXPECT_EQ(dispatcher.*Private<UsbIdMap>::member, usbIds);
    EXPECT_TRUE(dispatcher.*Private<UsbInitialised>::member);
    EXPECT_THAT(TakeLines(), testing::IsEmpty());
    // Whatever looks for a vendor now finds none.
    std::vector<DeviceInfo> devices;
    EXPECT_EQ(dispatcher.GetDeviceInfoByUsb(devices, L"VID_1234&PID_ABCD"), kNothingToCall);
    EXPECT_EQ(TakeLines().back(),
              LineIs(4, "call Func map find fail, err:", "UsbConnInterface::GetDeviceInfoByUsb"));
    std::vector<WifiConfigInfo> networks;
    EXPECT_EQ(dispatcher.GetUSBWifiScan(DeviceOf("alpha"), networks, 0), kNothingToCall);
    EXPECT_EQ(TakeLines().back(),
              LineIs(4, "call Func map find fail:", "UsbConnInterface::GetUSBWifiScan"));
    EXPECT_EQ(dispatcher.PrinterUSBNetConfigEvent(DeviceOf("alpha"), NetworkOf("office")),
              kNothingToCall);
    EXPECT_EQ(TakeLines().back(),
              LineIs(4, "call Func map find fail:", "UsbConnInterface::PrinterUSBNetConfigEvent"));
}

TEST_F(Layout, NamesForResultsAndLimitsHaveTheNumbersThatAreKnownOutside) {
    EXPECT_EQ(kNothingToCall, -1);
    EXPECT_EQ(kNotInitialised, -2);
    EXPECT_EQ(kNoCallback, -3);
    EXPECT_EQ(kVendorFailed, -1);
    EXPECT_EQ(kMaxDevices, 64);
    EXPECT_EQ(kMaxNetworks, 128);
}

TEST_F(Layout, OfTheUsbMonitorIsTheApplicationsRegistration) {
    UsbInterfaceMonitor& monitor = UsbInterfaceMonitor::GetInstance();
    monitor.SetDeviceStateCallbackInfo({Application::OnDevice, 77});
    DeviceCallbackInfo own{};
    std::memcpy(&own, &monitor, sizeof own);
    EXPECT_EQ(own.callback, &Application::OnDevice);
    EXPECT_EQ(own.param, 77);
    monitor.ClearDeviceStateCallbackInfo();
    std::memcpy(&own, &monitor, sizeof own);
    EXPECT_EQ(own.callback, nullptr);
    EXPECT_EQ(own.param, 0);
}

TEST_F(Layout, OfTheWifiListenerIsTheApplicationsRegistrationAndTheVendors) {
    NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
    const VendorSdk::WifiCallbackInfo* const vendors =
        listener.SetDeviceCallbackInfo({Application::OnNetwork, 77});
    const auto* const bytes = reinterpret_cast<const char*>(&listener);
    EXPECT_EQ(reinterpret_cast<const char*>(vendors), bytes + 16);
    WifiCallbackInfo own{};
    std::memcpy(&own, bytes, sizeof own);
    EXPECT_EQ(own.callback, &Application::OnNetwork);
    EXPECT_EQ(own.param, 77);
}

TEST_F(Layout, OfTheListenerIsTheApplicationsRegistrationAndTheVendors) {
    ScanInterfaceListener& listener = ScanInterfaceListener::GetInstance();
    const VendorSdk::DeviceCallbackInfo* const vendors =
        listener.SetDeviceCallbackInfo({Application::OnDevice, 77});
    const auto* const bytes = reinterpret_cast<const char*>(&listener);
    EXPECT_EQ(reinterpret_cast<const char*>(vendors), bytes + 16);
    DeviceCallbackInfo own{};
    std::memcpy(&own, bytes, sizeof own);
    EXPECT_EQ(own.callback, &Application::OnDevice);
    EXPECT_EQ(own.param, 77);
    listener.ClearDeviceCallbackInfo();
    std::memcpy(&own, bytes, sizeof own);
    EXPECT_EQ(own.callback, nullptr);
    EXPECT_EQ(own.param, 0);
}

}  // namespace
