// SPDX-License-Identifier: Apache-2.0

// The records' layout and the conversions of the built library.

#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

#include "tests/support/broker_test.h"
#include "tests/support/guarded_memory.h"

namespace {

using namespace PrinterDeviceDiscoverSdk;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Record>
constexpr bool IsDeviceRecord() {
    return sizeof(Record) == 228 && std::is_trivially_copyable_v<Record> &&
           std::is_standard_layout_v<Record> && offsetof(Record, code1) == 0 &&
           offsetof(Record, code2) == 2 && offsetof(Record, deviceSN) == 4 &&
           offsetof(Record, modelID) == 68 && offsetof(Record, extra1) == 100 &&
           offsetof(Record, extra2) == 164 && offsetof(Record, extra3) == 196 &&
           std::is_same_v<decltype(Record::code1), std::uint16_t> &&
           std::is_same_v<decltype(Record::code2), std::uint16_t> &&
           std::is_same_v<decltype(Record::deviceSN), char[64]> &&
           std::is_same_v<decltype(Record::modelID), char[32]> &&
           std::is_same_v<decltype(Record::extra1), char[64]> &&
           std::is_same_v<decltype(Record::extra2), char[32]> &&
           std::is_same_v<decltype(Record::extra3), char[32]>;
}
static_assert(IsDeviceRecord<DeviceInfo>() && IsDeviceRecord<VendorSdk::DeviceInfo>());
static_assert(!std::is_same_v<DeviceInfo, VendorSdk::DeviceInfo>);

template <class Record>
constexpr bool IsWifiRecord() {
    return sizeof(Record) == 164 && std::is_trivially_copyable_v<Record> &&
           std::is_standard_layout_v<Record> && offsetof(Record, rssi) == 0 &&
           offsetof(Record, ssid) == 4 && offsetof(Record, pwd) == 132 &&
           std::is_same_v<decltype(Record::rssi), float> &&
           std::is_same_v<decltype(Record::ssid), char[128]> &&
           std::is_same_v<decltype(Record::pwd), char[32]>;
}
static_assert(IsWifiRecord<WifiConfigInfo>() && IsWifiRecord<VendorSdk::WifiConfigInfo>());
static_assert(!std::is_same_v<WifiConfigInfo, VendorSdk::WifiConfigInfo>);

template <class Registration, class Record>
constexpr bool IsRegistration() {
    return sizeof(Registration) == 16 && std::is_standard_layout_v<Registration> &&
           offsetof(Registration, callback) == 0 && offsetof(Registration, param) == 8 &&
           std::is_same_v<decltype(Registration::callback), int (*)(const Record*)> &&
           std::is_same_v<decltype(Registration::param), std::int32_t>;
}
static_assert(IsRegistration<DeviceCallbackInfo, DeviceInfo>());
static_assert(IsRegistration<VendorSdk::DeviceCallbackInfo, VendorSdk::DeviceInfo>());
static_assert(IsRegistration<WifiCallbackInfo, WifiConfigInfo>());
static_assert(IsRegistration<VendorSdk::WifiCallbackInfo, VendorSdk::WifiConfigInfo>());

static_assert(!std::is_default_constructible_v<DiscoverBasic>);

constexpr char kConversion[] = "DiscoverBasic::GetDiscoverWifoConfigInfo";

class Conversion : public BrokerTest {};

// A record of which every byte tells its place, and no text is terminated.
template <class Record>
Record EveryByte() {
    Record record;
    auto* const bytes = reinterpret_cast<unsigned char*>(&record);
    for (std::size_t at = 0; at < sizeof record; ++at) {
        bytes[at] = static_cast<unsigned char>(at % 255 + 1);
    }
    return record;
}

template <class Record>
Record Filled(unsigned char byte) {
    Record record;
    std::memset(&record, byte, sizeof record);
    return record;
}

TEST_F(Conversion, CopiesDevicesByteForByteBothWaysAndSilently) {
    const auto vendors = EveryByte<VendorSdk::DeviceInfo>();
    auto own = Filled<DeviceInfo>(0xEE);
    DiscoverBasic::GetDiscoverDeviceInfo(vendors, own);
    EXPECT_EQ(BytesOf(own), BytesOf(vendors));
    EXPECT_EQ(BytesOf(vendors), BytesOf(EveryByte<VendorSdk::DeviceInfo>()));
    EXPECT_EQ(own.deviceSN[63], vendors.deviceSN[63]);
    EXPECT_NE(own.deviceSN[63], '\0');

    auto back = Filled<VendorSdk::DeviceInfo>(0xEE);
    DiscoverBasic::GetVendorSdkDeviceInfo(own, back);
    EXPECT_EQ(BytesOf(back), BytesOf(vendors));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Conversion, CopiesWhatFollowsADevicesTerminators) {
    auto vendors = EveryByte<VendorSdk::DeviceInfo>();
    vendors.deviceSN[3] = '\0';
    vendors.extra3[0] = '\0';
    DeviceInfo own{};
    DiscoverBasic::GetDiscoverDeviceInfo(vendors, own);
    EXPECT_EQ(BytesOf(own), BytesOf(vendors));
}

TEST_F(Conversion, ReadsAndWritesNoByteBeyondTheRecords) {
    Guarded<VendorSdk::DeviceInfo> vendors;
    Guarded<DeviceInfo> own;
    DiscoverBasic::GetDiscoverDeviceInfo(*vendors, *own);
    DiscoverBasic::GetVendorSdkDeviceInfo(*own, *vendors);
    Guarded<VendorSdk::WifiConfigInfo> vendorsNetwork;
    Guarded<WifiConfigInfo> ownNetwork;
    DiscoverBasic::GetDiscoverWifoConfigInfo(*vendorsNetwork, *ownNetwork);
    DiscoverBasic::GetVendorSdkWifoConfigInfo(*ownNetwork, *vendorsNetwork);
}

TEST_F(Conversion, TowardsTheApplicationLogsTheNetwork) {
    VendorSdk::WifiConfigInfo vendors{};
    vendors.rssi = -61.5f;
    SetField(vendors.ssid, "office");
    SetField(vendors.pwd, "secret");
    auto own = Filled<WifiConfigInfo>(0xEE);
    DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
    EXPECT_THAT(TakeLines(), ElementsAre(LineIs(3, "rssi = -61.5", kConversion),
                                         LineIs(3, "memcpy_s1 ret = 0", kConversion),
                                         LineIs(3, "memcpy_s2 ret = 0", kConversion)));
    EXPECT_EQ(BytesOf(own), BytesOf(vendors));
}

// Each line comes behind what it tells of and before what the next one tells of; the terminators
// come last.
TEST_F(Conversion, TowardsTheApplicationLogsEachFieldOnceItIsCopied) {
    const auto vendors = Filled<VendorSdk::WifiConfigInfo>('x');
    auto own = Filled<WifiConfigInfo>('-');
    std::vector<std::string> states;
    RecordingLog::OnLine([&](const RecordingLog::Line&) { states.push_back(BytesOf(own)); });
    DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
    RecordingLog::OnLine({});
    const auto state = [](std::size_t copied) {
        return std::string(copied, 'x') + std::string(sizeof own - copied, '-');
    };
    EXPECT_THAT(states, ElementsAre(state(4), state(4 + 128), state(4 + 128 + 32)));
    EXPECT_EQ(own.ssid[127], '\0');
    EXPECT_EQ(own.pwd[31], '\0');
}

TEST_F(Conversion, TowardsTheVendorIsSilent) {
    WifiConfigInfo own{};
    own.rssi = 3.25f;
    SetField(own.ssid, "office");
    SetField(own.pwd, "secret");
    auto vendors = Filled<VendorSdk::WifiConfigInfo>(0xEE);
    DiscoverBasic::GetVendorSdkWifoConfigInfo(own, vendors);
    EXPECT_EQ(BytesOf(vendors), BytesOf(own));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(Conversion, AlwaysTerminatesANetworksTexts) {
    const auto vendors = Filled<VendorSdk::WifiConfigInfo>('x');
    auto own = Filled<WifiConfigInfo>(0xEE);
    DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
    EXPECT_EQ(std::string(own.ssid), std::string(127, 'x'));
    EXPECT_EQ(std::string(own.pwd), std::string(31, 'x'));
    EXPECT_EQ(vendors.ssid[127], 'x');
    EXPECT_EQ(vendors.pwd[31], 'x');

    const auto filled = Filled<WifiConfigInfo>('y');
    auto back = Filled<VendorSdk::WifiConfigInfo>(0xEE);
    DiscoverBasic::GetVendorSdkWifoConfigInfo(filled, back);
    EXPECT_EQ(std::string(back.ssid), std::string(127, 'y'));
    EXPECT_EQ(std::string(back.pwd), std::string(31, 'y'));
}

TEST_F(Conversion, CopiesWhatFollowsANetworksTerminators) {
    auto vendors = EveryByte<VendorSdk::WifiConfigInfo>();
    vendors.ssid[2] = '\0';
    vendors.ssid[127] = '\0';
    vendors.pwd[0] = '\0';
    vendors.pwd[31] = '\0';
    WifiConfigInfo own{};
    DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
    EXPECT_EQ(BytesOf(own), BytesOf(vendors));
}

TEST_F(Conversion, CopiesTheSignalStrengthBitForBit) {
    // Quiet and signalling NaNs with payloads, negative zero, a denormal, infinities, zero.
    for (const std::uint32_t bits : {0x7FC12345u, 0x7F812345u, 0xFF800001u, 0xFFFFFFFFu,
                                     0x80000000u, 0x00000001u, 0x7F800000u, 0xFF800000u, 0u}) {
        VendorSdk::WifiConfigInfo vendors{};
        std::memcpy(&vendors.rssi, &bits, sizeof bits);
        WifiConfigInfo own{};
        DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
        EXPECT_EQ(std::memcmp(&own.rssi, &bits, sizeof bits), 0) << std::hex << bits;
        VendorSdk::WifiConfigInfo back{};
        DiscoverBasic::GetVendorSdkWifoConfigInfo(own, back);
        EXPECT_EQ(std::memcmp(&back.rssi, &bits, sizeof bits), 0) << std::hex << bits;
    }
}

TEST_F(Conversion, LogsTheSignalStrengthInTheStreamsDefaultFormat) {
    for (const float strength :
         {-0.0f, 1e-10f, 123456792.0f, 0.1f, -67.0f, std::numeric_limits<float>::quiet_NaN(),
          std::numeric_limits<float>::infinity()}) {
        VendorSdk::WifiConfigInfo vendors{};
        vendors.rssi = strength;
        WifiConfigInfo own;
        DiscoverBasic::GetDiscoverWifoConfigInfo(vendors, own);
        std::ostringstream expected;
        expected << "rssi = " << strength;
        EXPECT_EQ(TakeLines().at(0), LineIs(3, expected.str(), kConversion));
    }
}

}  // namespace
