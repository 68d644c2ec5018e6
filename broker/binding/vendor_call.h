#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "DeviceDiscover/records.h"
#include "broker/binding/call_note.h"
#include "broker/binding/vendor_table.h"
#include "broker/log/log_line.h"
#include "broker/records/field_text.h"

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

// A vendor's entry point, to be called: every call of one goes through here and is noted in the
// table of calls. Null when the vendor has none. It needs no vendor table: it may be called on a
// thread that goes on while the process ends.
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

// What the vendor has in the slot of a family's list.
template <auto Slot, const auto& List, class Vendor>
auto FunctionOf(const Vendor& vendor) {
    const auto& [productId, entry] = vendor;
    return VendorFunction(productId, ExportName<Slot>(List), entry.*Slot);
}

// The entry point that the device's vendor has in the slot; null, with the reason logged, when
// there is none.
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

// The vendors' form of the application's record.
inline VendorSdk::DeviceInfo VendorRecord(const PrinterDeviceDiscoverSdk::DeviceInfo& device) {
    VendorSdk::DeviceInfo vendorDevice;
    PrinterDeviceDiscoverSdk::DiscoverBasic::GetVendorSdkDeviceInfo(device, vendorDevice);
    return vendorDevice;
}

}  // namespace Broker
