#pragma once

#include <string>
#include <string_view>

#include "DeviceDiscover/records.h"
#include "records/field_text.h"
#include "records/log_line.h"
#include "vendor/vendor_table.h"

namespace Broker {

// The dispatchers' own results; every other value is a vendor's.
inline constexpr int kNothingToCall = -1;
inline constexpr int kNotInitialised = -2;
inline constexpr int kNoCallback = -3;

// What every failure of a vendor becomes where the application is not told which it was.
inline constexpr int kVendorFailed = -1;

// Refuses an operation of a dispatcher that has no vendors yet.
inline int NotInitialised(const Location& where) {
    Log(LOG_LEVEL_ERROR, where, "NOINITOK");
    return kNotInitialised;
}

// Logs what a vendor's entry point returned, 0 being its success, and passes it on.
inline int Outcome(int result, std::string_view failure, const Location& where) {
    if (result == 0) {
        Log(LOG_LEVEL_DEBUG, where, "call Func OK");
    } else {
        Log(LOG_LEVEL_ERROR, where, failure, result);
    }
    return result;
}

// The device's vendor: the one whose product id equals the device's model id. The table's end, with
// the reason logged, when there is none.
template <class Entry>
typename VendorTable<Entry>::const_iterator FindVendor(
    const VendorTable<Entry>& vendors, const PrinterDeviceDiscoverSdk::DeviceInfo& device,
    const Location& where) {
    const auto vendor = vendors.find(std::string(FieldText(device, device.modelID)));
    if (vendor == vendors.end()) {
        Log(LOG_LEVEL_ERROR, where, "call Func map find fail:");
    }
    return vendor;
}

// The entry point that the device's vendor has in `slot`; null, with the reason logged, when there
// is none.
template <class Entry, class Function>
Function* FindFunction(const VendorTable<Entry>& vendors, Function* Entry::*slot,
                       const PrinterDeviceDiscoverSdk::DeviceInfo& device, const Location& where) {
    const auto vendor = FindVendor(vendors, device, where);
    if (vendor == vendors.end()) {
        return nullptr;
    }
    Function* const function = vendor->second.*slot;
    if (function == nullptr) {
        Log(LOG_LEVEL_ERROR, where, "call pFunc is nullptr - fail:");
    }
    return function;
}

// The vendors' form of the application's record.
inline VendorSdk::DeviceInfo VendorRecord(const PrinterDeviceDiscoverSdk::DeviceInfo& device) {
    VendorSdk::DeviceInfo vendorDevice;
    PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    return vendorDevice;
}

}  // namespace Broker
