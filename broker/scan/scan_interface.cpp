// SPDX-License-Identifier: Apache-2.0

#include "DeviceDiscover/scan.h"
#include "broker/binding/vendor_call.h"
#include "broker/binding/vendor_table.h"
#include "broker/binding/vendor_thread.h"
#include "broker/log/log_line.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

using ScanEntry = ScanInterface::VendorEntry;
using ScanVendors = Broker::VendorTable<ScanEntry>;

constexpr auto& kScanEntries = Broker::kScanEntryPoints<ScanEntry>;

// Notifies the device's vendor of a connection event.
template <auto Slot>
int Notify(const ScanVendors& vendors, const DeviceInfo& device, const Broker::Location& where) {
    const auto notify = Broker::FindFunction<Slot, kScanEntries>(vendors, device, where);
    if (!notify) {
        return kNothingToCall;
    }
    const VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    return Broker::Outcome(notify(&vendorDevice), "call Func Fail", where);
}

}  // namespace

ScanInterface& ScanInterface::GetInstance() {
    static ScanInterface instance;
    return instance;
}

ScanInterface::ScanInterface() {
    initialised = Broker::BindFirst([this] { return GetDeviceFunc(); }, [this] { UnInit(); });
}

ScanInterface::~ScanInterface() {
    initialised = false;
    UnInit();
}

bool ScanInterface::Init() {
    const bool bound = GetDeviceFunc();
    if (bound) {
        initialised = true;
    }
    return bound;
}

bool ScanInterface::GetDeviceFunc() {
    return Broker::BindVendors(vendors, &VendorInfo::scanModuleName, kScanEntries, HERE);
}

void ScanInterface::UnInit() {
    Broker::ReleaseVendors(vendors);
}

int ScanInterface::StartDeviceScan(const DeviceCallbackInfo& info) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const std::lock_guard lock(mutex);
    ScanInterfaceListener& listener = ScanInterfaceListener::GetInstance();
    VendorSdk::DeviceCallbackInfo* const registration = listener.SetDeviceCallbackInfo(info);
    int result = kNothingToCall;
    for (const auto& vendor : vendors) {
        // A stop clears the registration without taking the lock, so it is checked for each vendor.
        if (!listener.GetDeviceCallbackIsEnable()) {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "GetDeviceCallback Is Not Enable");
            return kNoCallback;
        }
        const auto scan = Broker::FunctionOf<&VendorEntry::StartDeviceScan, kScanEntries>(vendor);
        if (!scan) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        Broker::RunDetached([scan, registration] {
            const int scanResult = scan(registration);
            if (scanResult != 0) {
                Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", scanResult);
            }
        });
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK");
        result = 0;
    }
    return result;
}

int ScanInterface::StopDeviceScan() {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    ScanInterfaceListener::GetInstance().ClearDeviceCallbackInfo();
    const std::lock_guard lock(mutex);
    int result = kNothingToCall;
    for (const auto& vendor : vendors) {
        const auto stop = Broker::FunctionOf<&VendorEntry::StopDeviceScan, kScanEntries>(vendor);
        if (!stop) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        result = Broker::Outcome(stop(), "call Func fail, err:", HERE);
    }
    return result;
}

int ScanInterface::GetDeviceConnectState(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    const auto getState = Broker::FindFunction<&VendorEntry::GetDeviceConnectState, kScanEntries>(
        vendors, device, HERE);
    if (!getState) {
        return kNothingToCall;
    }
    const VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    const int result = getState(&vendorDevice);
    if (result == 1) {
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK", result);
    } else {
        Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func Fail", result);
    }
    return result;
}

int ScanInterface::BeforeConnectEventNotify(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    return Notify<&VendorEntry::BeforeConnectEventNotify>(vendors, device, HERE);
}

int ScanInterface::ConnectSuccessNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    return Notify<&VendorEntry::ConnectSuccessNotifyEvent>(vendors, device, HERE);
}

int ScanInterface::ConnectFailNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    return Notify<&VendorEntry::ConnectFailNotifyEvent>(vendors, device, HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
