// The order of members that the interface gives its classes and the application's records.

#include <cstddef>
#include <cstring>
#include <type_traits>

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
