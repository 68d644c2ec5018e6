#include <new>

#include "DeviceDiscover/scan.h"
#include "records/field_text.h"
#include "records/log_line.h"
#include "vendor/vendor_table.h"
#include "vendor/vendor_thread.h"

namespace PrinterDeviceDiscoverSdk {

namespace {

constexpr int kNothingToCall = -1;
constexpr int kNotInitialised = -2;
constexpr int kNoCallback = -3;

using Vendors = Broker::VendorTable<ScanInterface::VendorEntry>;
using DeviceFunction = int(const VendorSdk::DeviceInfo*);
using DeviceSlot = DeviceFunction* ScanInterface::VendorEntry::*;

int NotInitialised(const Broker::Location& where) {
    Broker::Log(LOG_LEVEL_ERROR, where, "NOINITOK");
    return kNotInitialised;
}

// Finds the entry point that serves the device; null, with the reason logged, when there is none.
DeviceFunction* FindDeviceFunction(const Vendors& vendors, DeviceSlot slot,
                                   const DeviceInfo& device, const Broker::Location& where) {
    const auto vendor = vendors.find(std::string(Broker::FieldText(device, device.modelID)));
    if (vendor == vendors.end()) {
        Broker::Log(LOG_LEVEL_ERROR, where, "call Func map find fail:");
        return nullptr;
    }
    DeviceFunction* const function = vendor->second.*slot;
    if (function == nullptr) {
        Broker::Log(LOG_LEVEL_ERROR, where, "call pFunc is nullptr - fail:");
    }
    return function;
}

int CallWith(DeviceFunction& function, const DeviceInfo& device) {
    VendorSdk::DeviceInfo vendorDevice;
    DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    return function(&vendorDevice);
}

// Tells the device's vendor of a connection event.
int Notify(const Vendors& vendors, DeviceSlot slot, const DeviceInfo& device,
           const Broker::Location& where) {
    DeviceFunction* const function = FindDeviceFunction(vendors, slot, device, where);
    if (function == nullptr) {
        return kNothingToCall;
    }
    const int result = CallWith(*function, device);
    if (result == 0) {
        Broker::Log(LOG_LEVEL_DEBUG, where, "call Func OK");
    } else {
        Broker::Log(LOG_LEVEL_ERROR, where, "call Func Fail", result);
    }
    return result;
}

}  // namespace

ScanInterface& ScanInterface::GetInstance() {
    static ScanInterface instance;
    return instance;
}

ScanInterface::ScanInterface() {
    try {
        initialised = GetDeviceFunc();
    } catch (...) {
        // No destructor follows: the next first use begins anew.
        UnInit();
        throw;
    }
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
        return NotInitialised(HERE);
    }
    const std::lock_guard lock(mutex);
    ScanInterfaceListener& listener = ScanInterfaceListener::GetInstance();
    VendorSdk::DeviceCallbackInfo* const registration = listener.SetDeviceCallbackInfo(info);
    int result = kNothingToCall;
    for (const auto& vendor : vendors) {
        // A stop clears the registration without waiting for the lock: each vendor asks again.
        if (!listener.GetDeviceCallbackIsEnable()) {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "GetDeviceCallback Is Not Enable");
            return kNoCallback;
        }
        const VendorEntry& entry = vendor.second;
        if (entry.StartDeviceScan == nullptr) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        Broker::RunDetached([entry, registration] {
            const int scanResult = entry.StartDeviceScan(registration);
            if (scanResult == 0) {
                return;
            }
            try {
                Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", scanResult);
            } catch (const std::bad_alloc&) {
                // Without memory for the line there is nobody to tell.
                return;
            }
        });
        Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK");
        result = 0;
    }
    return result;
}

int ScanInterface::StopDeviceScan() {
    if (!initialised) {
        return NotInitialised(HERE);
    }
    ScanInterfaceListener::GetInstance().ClearDeviceCallbackInfo();
    const std::lock_guard lock(mutex);
    int result = kNothingToCall;
    for (const auto& [productId, entry] : vendors) {
        if (entry.StopDeviceScan == nullptr) {
            Broker::Log(LOG_LEVEL_WARNING, HERE, "pFunc is nullptr, err:");
            continue;
        }
        result = entry.StopDeviceScan();
        if (result == 0) {
            Broker::Log(LOG_LEVEL_DEBUG, HERE, "call Func OK");
        } else {
            Broker::Log(LOG_LEVEL_ERROR, HERE, "call Func fail, err:", result);
        }
    }
    return result;
}

int ScanInterface::GetDeviceConnectState(const DeviceInfo& device) {
    if (!initialised) {
        return NotInitialised(HERE);
    }
    DeviceFunction* const function =
        FindDeviceFunction(vendors, &VendorEntry::GetDeviceConnectState, device, HERE);
    if (function == nullptr) {
        return kNothingToCall;
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
        return NotInitialised(HERE);
    }
    return Notify(vendors, &VendorEntry::BeforeConnectEventNotify, device, HERE);
}

int ScanInterface::ConnectSuccessNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return NotInitialised(HERE);
    }
    return Notify(vendors, &VendorEntry::ConnectSuccessNotifyEvent, device, HERE);
}

int ScanInterface::ConnectFailNotifyEvent(const DeviceInfo& device) {
    if (!initialised) {
        return NotInitialised(HERE);
    }
    return Notify(vendors, &VendorEntry::ConnectFailNotifyEvent, device, HERE);
}

}  // namespace PrinterDeviceDiscoverSdk
