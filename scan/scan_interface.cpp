#include "DeviceDiscover/scan.h"
#include "records/log_line.h"
#include "vendor/vendor_call.h"
#include "vendor/vendor_table.h"
#include "vendor/vendor_thread.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

using Vendors = Broker::VendorTable<ScanInterface::VendorEntry>;
using DeviceFunction = int(const VendorSdk::DeviceInfo*);
using DeviceSlot = DeviceFunction* ScanInterface::VendorEntry::*;

int CallWith(DeviceFunction& function, const DeviceInfo& device) {
    const VendorSdk::DeviceInfo vendorDevice = Broker::VendorRecord(device);
    return function(&vendorDevice);
}

// Tells the device's vendor of a connection event.
int Notify(const Vendors& vendors, DeviceSlot slot, const DeviceInfo& device,
           const Broker::Location& where) {
    DeviceFunction* const function = Broker::FindFunction(vendors, slot, device, where);
    if (function == nullptr) {
        return Broker::kNothingToCall;
    }
    return Broker::Outcome(CallWith(*function, device), "call Func Fail", where);
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
    return Broker::BindVendors(vendors, &VendorInfo::scanModuleName,
                               Broker::kScanEntryPoints<VendorEntry>, HERE);
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
    int result = Broker::kNothingToCall;
    for (const auto& vendor : vendors) {
        // A stop clears the registration without waiting for the lock: each vendor asks again.
        if (!listener.GetDeviceCallbackIsEnable()) {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "GetDeviceCallback Is Not Enable");
            return Broker::kNoCallback;
        }
        const VendorEntry& entry = vendor.second;
        if (entry.StartDeviceScan == nullptr) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        Broker::RunDetached([entry, registration] {
            const int scanResult = entry.StartDeviceScan(registration);
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
    int result = Broker::kNothingToCall;
    for (const auto& [productId, entry] : vendors) {
        if (entry.StopDeviceScan == nullptr) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        result = Broker::Outcome(entry.StopDeviceScan(), "call Func fail, err:", HERE);
    }
    return result;
}

int ScanInterface::GetDeviceConnectState(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    DeviceFunction* const function =
        Broker::FindFunction(vendors, &VendorEntry::GetDeviceConnectState, device, HERE);
    if (function == nullptr) {
        return Broker::kNothingToCall;
    }
    const int result = CallWith(*function, device);
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
    return Notify(vendors, &VendorEntry::BeforeConnectEventNotify, device, HERE);
}

int ScanInterface::ConnectSuccessNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    return Notify(vendors, &VendorEntry::ConnectSuccessNotifyEvent, device, HERE);
}

int ScanInterface::ConnectFailNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return Broker::NotInitialised(HERE);
    }
    return Notify(vendors, &VendorEntry::ConnectFailNotifyEvent, device, HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
