// SPDX-License-Identifier: Apache-2.0

#include <sstream>

#include "DeviceDiscover/usb.h"
#include "broker/binding/table_gate.h"
#include "broker/binding/vendor_call.h"
#include "broker/binding/vendor_table.h"
#include "broker/log/log_line.h"
#include "broker/log/wipe.h"
#include "platform/PrinterUtil/PrinterUtil.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

using UsbEntry = UsbConnInterface::VendorEntry;
using UsbVendors = Broker::VendorTable<UsbEntry>;

constexpr auto& kUsbEntries = Broker::kUsbEntryPoints<UsbEntry>;

// The positions of the numbers in a hardware identifier, VID_vvvv&PID_pppp.
constexpr std::size_t kVendorIdAt = 4;
constexpr std::size_t kProductIdAt = 13;
constexpr std::size_t kIdLength = 4;

// The hexadecimal number at `position` of the identifier; 0 when there is none.
std::int32_t IdAt(const std::string& usbId, std::size_t position) {
    std::istringstream digits(usbId.substr(position, kIdLength));
    std::int32_t id = 0;
    digits >> std::hex >> id;
    return id;
}

// Whether a vendor's count announces records. A count above the available room is invalid.
bool IsUsable(std::int32_t count, std::int32_t most) {
    return count >= 1 && count <= most;
}

// Detached threads look up the vendors of plugged-in printers.
Broker::TableGate gate;

bool IsReadable(const bool& initialised) {
    const Broker::TableUse tables(gate);
    return tables && initialised;
}

// The outcome of looking up an identifier's vendor.
enum class Search { kClosed, kNoProduct, kNoVendor, kFound };

struct Enumeration {
    Search search = Search::kClosed;
    Broker::VendorFunction<VendorSdk::GetDeviceInfoByUsbFunction> function;
};

// Does only the two look-ups, which are fast: process exit waits for them.
Enumeration FindEnumeration(const std::map<std::string, std::string>& usbIdMap,
                            const UsbVendors& vendors, const std::string& usbId) {
    const Broker::TableUse tables(gate);
    if (!tables) {
        return {};
    }
    const auto product = usbIdMap.find(usbId);
    if (product == usbIdMap.end()) {
        return {Search::kNoProduct, {}};
    }
    const auto vendor = vendors.find(product->second);
    if (vendor == vendors.end()) {
        return {Search::kNoVendor, {}};
    }
    return {Search::kFound,
            Broker::FunctionOf<&UsbEntry::pGetDeviceInfoByUsb, kUsbEntries>(*vendor)};
}

// Logs why there is no entry point to call, and returns the operation's result.
int NoEnumeration(Search search, const Broker::Location& where) {
    switch (search) {
        case Search::kClosed:
            return Broker::NotInitialised(where);
        case Search::kNoProduct:
            Broker::Log(LOG_LEVEL_WARNING, where, "call usb map find fail, err:");
            break;
        case Search::kNoVendor:
            Broker::Log(LOG_LEVEL_ERROR, where, "call Func map find fail, err:");
            break;
        case Search::kFound:
            Broker::Log(LOG_LEVEL_ERROR, where, "pFunc is nullptr, err:");
            break;
    }
    return kNothingToCall;
}

void AppendDevices(std::vector<DeviceInfo>& devices, const VendorSdk::DeviceInfo* found,
                   std::int32_t count, const Broker::Location& where) {
    for (std::int32_t i = 0; i < count; ++i) {
        DiscoverBasic::GetDiscoverDeviceInfo(found[i], devices.emplace_back());
        Broker::Log(LOG_LEVEL_WARNING, where, "STEP.....add");
    }
}

void AppendNetworks(std::vector<WifiConfigInfo>& networks, const VendorSdk::WifiConfigInfo* found,
                    std::int32_t count, const Broker::Location& where) {
    for (std::int32_t i = 0; i < count; ++i) {
        WifiConfigInfo network{};
        Broker::Log(LOG_LEVEL_WARNING, where, "STEP...add1");
        DiscoverBasic::GetDiscoverWifoConfigInfo(found[i], network);
        Broker::Log(LOG_LEVEL_WARNING, where, "STEP.....add2");
        Broker::Log(LOG_LEVEL_WARNING, where, "STEP.....add2 ", std::uint64_t{networks.size()});
        networks.push_back(network);
        Broker::Log(LOG_LEVEL_WARNING, where, "STEP.....add3");
        Broker::Log(LOG_LEVEL_WARNING, where, "ssid", Broker::FieldText(network, network.ssid));
    }
}

}  // namespace

UsbConnInterface& UsbConnInterface::GetInstance() {
    static UsbConnInterface instance;
    return instance;
}

UsbConnInterface::UsbConnInterface() {
    initialised = Broker::BindFirst([this] { return Init(); }, [this] { UnInit(); });
}

UsbConnInterface::~UsbConnInterface() {
    gate.Close();
    initialised = false;
    UnInit();
}

bool UsbConnInterface::Init() {
    const bool bound = GetDeviceFunc() && GetUsbItemMap();
    if (bound) {
        initialised = true;
    }
    return bound;
}

bool UsbConnInterface::GetDeviceFunc() {
    return Broker::BindVendors(vendors, &VendorInfo::vendorName, kUsbEntries, HERE);
}

bool UsbConnInterface::GetUsbItemMap() {
    const std::vector<VendorInfo> supported = Broker::SupportedVendors(HERE);
    for (const VendorInfo& vendor : supported) {
        std::vector<std::string> usbIds;
        if (!split(vendor.usbIdList, usbIds) || usbIds.empty()) {
            return false;
        }
        for (const std::string& usbId : usbIds) {
            usbIdMap.emplace(usbId, vendor.productId);
        }
    }
    return !supported.empty();
}

void UsbConnInterface::UnInit() {
    Broker::ReleaseVendors(vendors);
}

// Only blanks separate pieces: a tab is part of its piece.
bool UsbConnInterface::split(const std::string& text, std::vector<std::string>& pieces) {
    if (text.empty()) {
        return false;
    }
    auto begin = text.find_first_not_of(' ');
    while (begin != std::string::npos) {
        const auto end = text.find(' ', begin);
        pieces.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(' ', end);
    }
    return true;
}

// The exported signature takes the identifier by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int UsbConnInterface::GetDeviceInfoByUsb(std::vector<DeviceInfo>& devices, std::wstring deviceId) {
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP1");
    if (!IsReadable(initialised)) {
        return Broker::NotInitialised(HERE);
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP2");
    Broker::Log(LOG_LEVEL_WARNING, HERE, "deviceID:", deviceId);
    const std::string usbId = PrinterUtil::WStringToString(deviceId);
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "usbId:", usbId.c_str());
    const Enumeration enumeration = FindEnumeration(usbIdMap, vendors, usbId);
    if (!enumeration.function) {
        return NoEnumeration(enumeration.search, HERE);
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP3");
    const std::int32_t vendorId = IdAt(usbId, kVendorIdAt);
    const std::int32_t productId = IdAt(usbId, kProductIdAt);
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "pid:", Broker::Hex{productId}, "vid",
                Broker::Hex{vendorId});
    VendorSdk::DeviceInfo found[kMaxDevices];
    std::int32_t count = 0;
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP4");
    const int result = enumeration.function(static_cast<std::uint16_t>(productId),
                                            static_cast<std::uint16_t>(vendorId), found, &count);
    if (result != 0) {
        Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func Fail", result);
    } else {
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK", count);
        if (IsUsable(count, kMaxDevices)) {
            AppendDevices(devices, found, count, HERE);
        }
        Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP5");
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP6", std::uint64_t{devices.size()});
    return result;
}

int UsbConnInterface::GetUSBWifiScan(const DeviceInfo& device,
                                     std::vector<WifiConfigInfo>& networks, int option) {
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP1");
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP2");
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "modeid:", Broker::FieldText(device, device.modelID));
    const auto scan =
        Broker::FindFunction<&VendorEntry::pGetUSBWifiScan, kUsbEntries>(vendors, device, HERE);
    if (!scan) {
        return kNothingToCall;
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP3");
    VendorSdk::WifiConfigInfo found[kMaxNetworks];
    std::int32_t count = 0;
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP4");
    const VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    const int result = scan(&vendorDevice, option, found, &count);
    if (result != 0) {
        Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", result);
    } else {
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK", count);
        if (IsUsable(count, kMaxNetworks)) {
            AppendNetworks(networks, found, count, HERE);
        }
        Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP5");
    }
    Broker::Log(LOG_LEVEL_WARNING, HERE, "STEP6", std::uint64_t{networks.size()});
    return result;
}

int UsbConnInterface::PrinterUSBNetConfigEvent(const DeviceInfo& device,
                                               const WifiConfigInfo& network) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "modeid:", Broker::FieldText(device, device.modelID));
    const auto configure =
        Broker::FindFunction<&VendorEntry::pPrinterUSBNetConfigEvent, kUsbEntries>(vendors, device,
                                                                                   HERE);
    if (!configure) {
        return kNothingToCall;
    }
    const VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    VendorSdk::WifiConfigInfo vendorNetwork;
    const Broker::WipeAtEnd wiped(vendorNetwork);
    DiscoverBasic::GetVendorSdkWifoConfigInfo(network, vendorNetwork);
    const int result =
        Broker::Outcome(configure(&vendorDevice, &vendorNetwork), "call Func Fail", HERE);
    return result == 0 ? 0 : kVendorFailed;
}

}  // namespace PrinterDeviceDiscoverSdk
