// SPDX-License-Identifier: Apache-2.0

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

// The vendors of a dispatcher by product id. The table owns one reference to each entry's module.
template <class Entry>
using VendorTable = std::map<std::string, Entry>;

// Releases a module reference that the table does not own yet.
struct ModuleRelease {
    void operator()(HINSTANCE module) const { FreeLibrary(module); }
};
using ModuleReference = std::unique_ptr<std::remove_pointer_t<HINSTANCE>, ModuleRelease>;

// Returns the vendors that the application supports now. Logs under `where` when there is none.
inline std::vector<VendorInfo> SupportedVendors(const Location& where) {
    std::vector<VendorInfo> vendors;
    VendorDllMgr::GetInstance().GetCurrentSupportList(vendors);
    if (vendors.empty()) {
        Log(LOG_LEVEL_ERROR, where, "vendorList is empty. DeleteAllVendor");
    }
    return vendors;
}

// Looks up the module's entry points and stores each in its slot. A missing entry point is logged
// and leaves its slot null; the vendor stays in the table.
template <class Entry, std::size_t Count>
void LookUpEntryPoints(Entry& entry, const EntryPointList<Entry, Count>& list,
                       const Location& where) {
    for (const std::size_t slot : list.lookupOrder) {
        const EntryPoint<Entry>& entryPoint = list.entryPoints[slot];
        // With a null module, dlsym would search the program itself.
        const FARPROC symbol =
            entry.module == nullptr ? nullptr : GetProcAddress(entry.module, entryPoint.exportName);
        entryPoint.store(entry, symbol);
        if (symbol == nullptr) {
            Log(LOG_LEVEL_ERROR, where, entryPoint.missingMessage);
        }
    }
}

// Adds the supported vendors to `table`, each with the module that `moduleName` names and the entry
// points of `list`. False when no vendor is supported. Skips a vendor without a module. Drops a
// vendor whose product id is already in the table; its module stays loaded. Lines are logged under
// `where`, the dispatcher's own function. After an exception the table owns the references of its
// entries, and all others are released.
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
        // The table owns the reference now; or the vendor was dropped and its module stays loaded.
        static_cast<void>(reference.release());
    }
    return !vendors.empty();
}

// Binds the vendors in a dispatcher's constructor. When a constructor throws, no destructor runs:
// the bound modules are released here, and the next use starts again.
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

// Releases every module, in the order of the product ids, and empties the table.
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
