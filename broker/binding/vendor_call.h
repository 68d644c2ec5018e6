// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "DeviceDiscover/records.h"
#include "DeviceDiscover/results.h"
#include "broker/binding/call_note.h"
#include "broker/binding/vendor_table.h"
#include "broker/log/log_line.h"
#include "broker/records/field_text.h"

namespace Broker {

// Refuses an operation of a dispatcher that has no vendors yet.
inline int NotInitialised(const Location& where) {
    Log(LOG_LEVEL_ERROR, where, "NOINITOK");
    return PrinterDeviceDiscoverSdk::kNotInitialised;
}

// Logs and returns the result of a vendor's entry point; 0 is success.
inline int Outcome(int result, std::string_view failure, const Location& where) {
    if (result == 0) {
        Log(LOG_LEVEL_DEBUG, where, "call Func OK");
    } else {
        Log(LOG_LEVEL_ERROR, where, failure, result);
    }
    return result;
}

// Finds the device's vendor, whose product id equals the device's model id. Logs the reason and
// returns the table's end when there is none.
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

// A callable entry point of a vendor. Every call of an entry point goes through this class and is
// recorded in the table of calls. Null when the vendor lacks the entry point. Uses no vendor table,
// so it may be called on a thread that still runs during process exit.
template <class Function>
class VendorFunction {
public:
    VendorFunction() = default;
    VendorFunction(std::string vendor, const char* exportName, Function* entryPoint)
        : productId(std::move(vendor)), name(exportName), function(entryPoint) {}

    explicit operator bool() const { return function != nullptr; }

    template <class... Arguments>
    int operator()(Arguments... arguments) const {
        CallNote note(productId, name);
        return note.Returned(function(arguments...));
    }

private:
    std::string productId;
    const char* name = nullptr;
    Function* function = nullptr;
};

// The vendor's entry point in the slot of a family's list.
template <auto Slot, const auto& List, class Vendor>
auto FunctionOf(const Vendor& vendor) {
    const auto& [productId, entry] = vendor;
    return VendorFunction(productId, ExportName<Slot>(List), entry.*Slot);
}

// The entry point of the device's vendor in the slot. Logs the reason and returns null when there
// is none.
template <auto Slot, const auto& List, class Entry>
auto FindFunction(const VendorTable<Entry>& vendors,
                  const PrinterDeviceDiscoverSdk::DeviceInfo& device, const Location& where) {
    using Found = decltype(FunctionOf<Slot, List>(*vendors.begin()));
    const auto vendor = FindVendor(vendors, device, where);
    if (vendor == vendors.end()) {
        return Found();
    }
    Found function = FunctionOf<Slot, List>(*vendor);
    if (!function) {
        Log(LOG_LEVEL_ERROR, where, "call pFunc is nullptr - fail:");
    }
    return function;
}

// Converts the application's record to the vendors'.
inline VendorSdk::DeviceInfo VendorRecord(const PrinterDeviceDiscoverSdk::DeviceInfo& device) {
    VendorSdk::DeviceInfo vendorDevice;
    PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    return vendorDevice;
}

}  // namespace Broker
