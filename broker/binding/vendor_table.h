#pragma once

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "broker/binding/entry_points.h"
#include "broker/log/log_line.h"
#include "platform/PrinterUtil/VendorDllMgr.h"
#include "platform/compiler.h"
#include "platform/os_calls.h"

namespace Broker {

// A dispatcher's vendors by product id. The table owns one reference to each entry's module.
template <class Entry>
using VendorTable = std::map<std::string, Entry>;

// A reference to a module that nobody owns yet.
struct ModuleRelease {
    void operator()(HINSTANCE module) const { FreeLibrary(module); }
};
using ModuleReference = std::unique_ptr<std::remove_pointer_t<HINSTANCE>, ModuleRelease>;

// The vendors that the application supports now; logged under `where` when there is none.
inline std::vector<VendorInfo> SupportedVendors(const Location& where) {
    std::vector<VendorInfo> vendors;
    VendorDllMgr::GetInstance().GetCurrentSupportList(vendors);
    if (vendors.empty()) {
        Log(LOG_LEVEL_ERROR, where, "vendorList is empty. DeleteAllVendor");
    }
    return vendors;
}

// Looks up the module's entry points, each into its slot. One that the module lacks is logged and
// leaves its slot null; it never costs the vendor its place.
template <class Entry, std::size_t Count>
void LookUpEntryPoints(Entry& entry, const EntryPointList<Entry, Count>& list,
                       const Location& where) {
    for (const std::size_t slot : list.lookupOrder) {
        const EntryPoint<Entry>& entryPoint = list.entryPoints[slot];
        // One system would look in the program itself when there is no module.
        const FARPROC symbol =
            entry.module == nullptr ? nullptr : GetProcAddress(entry.module, entryPoint.exportName);
        entryPoint.store(entry, symbol);
        if (symbol == nullptr) {
            Log(LOG_LEVEL_ERROR, where, entryPoint.missingMessage);
        }
    }
}

// Adds the supported vendors to `table`, each with the module that `moduleName` names and the entry
// points of `list`; false when none is supported. A vendor without a module is passed over; one
// whose product id is in the table already is dropped, and its module stays loaded. The lines are
// logged under `where`, the dispatcher's own function. When something throws, the table owns what
// it holds by then, and every other reference has been given back.
template <class Entry, std::size_t Count>
bool BindVendors(VendorTable<Entry>& table, std::string VendorInfo::*moduleName,
                 const EntryPointList<Entry, Count>& list, const Location& where) {
    const std::vector<VendorInfo> vendors = SupportedVendors(where);
    for (const VendorInfo& vendor : vendors) {
        Entry entry;
        if (!VendorDllMgr::GetInstance().GetDeviceHandle(entry.module, vendor.*moduleName)) {
            continue;
        }
        ModuleReference reference(entry.module);
        LookUpEntryPoints(entry, list, where);
        Log(LOG_LEVEL_WARNING, where, "productId", vendor.productId.c_str());
        table.emplace(vendor.productId, entry);
        // The table's from now on; or that of a dropped vendor, whose module stays loaded.
        static_cast<void>(reference.release());
    }
    return !vendors.empty();
}

// The binding in a dispatcher's constructor. No destructor follows one that throws: what it has
// bound is released, and the next first use begins anew.
template <class Bind, class Release>
bool BindFirst(Bind bind, Release release) {
    try {
        return bind();
    }
    PLATFORM_CATCH_ALL {
        release();
        throw;
    }
}

// Gives back every module, in the order of the product ids, and empties the table.
template <class Entry>
void ReleaseVendors(VendorTable<Entry>& table) {
    for (auto& [productId, entry] : table) {
        if (entry.module != nullptr) {
            FreeLibrary(entry.module);
            entry.module = nullptr;
        }
    }
    table.clear();
}

}  // namespace Broker
