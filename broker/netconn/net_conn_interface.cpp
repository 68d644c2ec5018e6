// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/netconn.h"
#include "broker/binding/vendor_call.h"
#include "broker/binding/vendor_table.h"
#include "broker/binding/vendor_thread.h"
#include "broker/log/log_line.h"
#include "broker/log/wipe.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

using Item = NetConnInterfaceItem;
using NetConnVendors = Broker::VendorTable<Item>;

constexpr auto& kNetConnEntries = Broker::kNetConnEntryPoints<Item>;

// The entry point of the chosen vendor. Logs the reason and returns null when there is no vendor or
// it lacks the entry point.
template <auto Slot>
auto ChosenFunction(const NetConnVendors& vendors, NetConnVendors::const_iterator vendor,
                    const char* missing, const Broker::Location& where) {
    using Chosen = decltype(Broker::FunctionOf<Slot, kNetConnEntries>(*vendor));
    if (vendor == vendors.end()) {
        Broker::Log(LOG_LEVEL_ERROR, where, "call Func map find fail:");
        return Chosen();
    }
    Chosen function = Broker::FunctionOf<Slot, kNetConnEntries>(*vendor);
    if (!function) {
        Broker::Log(LOG_LEVEL_WARNING, where, missing);
    }
    return function;
}

}  // namespace

NetConnInterface& NetConnInterface::GetInstance() {
    static NetConnInterface instance;
    return instance;
}

NetConnInterface::NetConnInterface() {
    initialised = Broker::BindFirst([this] { return GetDeviceFunc(); }, [this] { UnInit(); });
}

NetConnInterface::~NetConnInterface() {
    initialised = false;
    UnInit();
}

bool NetConnInterface::Init() {
    const bool bound = GetDeviceFunc();
    if (bound) {
        initialised = true;
    }
    return bound;
}

bool NetConnInterface::GetDeviceFunc() {
    return Broker::BindVendors(vendors, &VendorInfo::vendorName, kNetConnEntries, HERE);
}

void NetConnInterface::UnInit() {
    Broker::ReleaseVendors(vendors);
}

NetConnVendors::iterator NetConnInterface::GetCurrentNetConnectWifiAPInterface() {
    if (!initialised) {
        Broker::NotInitialised(HERE);
        return vendors.end();
    }
    for (auto vendor = vendors.begin(); vendor != vendors.end(); ++vendor) {
        const auto isConnected =
            Broker::FunctionOf<&Item::IsConnectCurrentWifiAP, kNetConnEntries>(*vendor);
        if (!isConnected) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        const int result = isConnected();
        if (result == 0) {
            return vendor;
        }
        Broker::Log(LOG_LEVEL_WARNING, HERE, "call Func ret =", result);
    }
    Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func all fail, err:");
    return vendors.end();
}

int NetConnInterface::StartAPWifiScan(const WifiCallbackInfo& info) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const std::lock_guard lock(mutex);
    NetConnInterfaceListener& listener = NetConnInterfaceListener::GetInstance();
    VendorSdk::WifiCallbackInfo* const registration = listener.SetDeviceCallbackInfo(info);
    if (!listener.GetDeviceCallbackIsEnable()) {
        // This branch means that there is no callback. The text says otherwise, but applications
        // rely on it.
        Broker::Log(LOG_LEVEL_ERROR, HERE, "GetDeviceCallback Is Enable,please first Stop");
        return kNoCallback;
    }
    const auto scan = ChosenFunction<&Item::StartAPWifiScan>(
        vendors, GetCurrentNetConnectWifiAPInterface(), "call pFunc is nullptr, err:", HERE);
    if (!scan) {
        return kNothingToCall;
    }
    Broker::RunDetached([scan, registration] {
        const int result = scan(registration);
        if (result != 0) {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", result);
        }
    });
    Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK");
    return 0;
}

int NetConnInterface::StopAPWifiScan() {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    NetConnInterfaceListener::GetInstance().ClearDeviceCallbackInfo();
    const std::lock_guard lock(mutex);
    const auto stop = ChosenFunction<&Item::StopAPWifiScan>(
        vendors, GetCurrentNetConnectWifiAPInterface(), "pFunc is nullptr, err:", HERE);
    if (!stop) {
        return kNothingToCall;
    }
    return Broker::Outcome(stop(), "call Func fail, err:", HERE);
}

int NetConnInterface::PrinterAPNetConfigEvent(const WifiConfigInfo& network) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const auto configure = ChosenFunction<&Item::PrinterAPNetConfigEvent>(
        vendors, GetCurrentNetConnectWifiAPInterface(), "pFunc is nullptr, err:", HERE);
    if (!configure) {
        return kNothingToCall;
    }
    VendorSdk::WifiConfigInfo vendorNetwork;
    const Broker::WipeAtEnd wiped(vendorNetwork);
    DiscoverBasic::GetVendorSdkWifoConfigInfo(network, vendorNetwork);
    return Broker::Outcome(configure(&vendorNetwork), "call Func fail, err:", HERE);
}

int NetConnInterface::GetDeviceInfoByNet(DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const auto getDevice = ChosenFunction<&Item::GetDeviceInfoByNet>(
        vendors, GetCurrentNetConnectWifiAPInterface(), "pFunc is nullptr, err:", HERE);
    if (!getDevice) {
        return kNothingToCall;
    }
    VendorSdk::DeviceInfo vendorDevice;
    const int result = Broker::Outcome(getDevice(&vendorDevice), "call Func fail, err:", HERE);
    if (result == 0) {
        DiscoverBasic::GetDiscoverDeviceInfo(vendorDevice, device);
    }
    return result;
}

int NetConnInterface::IsLocalAreaNetworkOK(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const auto vendor = Broker::FindVendor(vendors, device, HERE);
    if (vendor == vendors.end()) {
        return kNothingToCall;
    }
    const auto isReachable =
        Broker::FunctionOf<&Item::IsLocalAreaNetworkOK, kNetConnEntries>(*vendor);
    if (!isReachable) {
        Broker::Log(LOG_LEVEL_ERROR, HERE, "call pFunc is nullptr - fail:", vendor->first);
        return kNothingToCall;
    }
    VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    return Broker::Outcome(isReachable(&vendorDevice), "call Func Fail", HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
