// SPDX-License-Identifier: Apache-2.0

#pragma once

// The scripted PrinterUtil: its vendor list is what the test says, its modules are the scripted
// ones of tests/modules.

#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

namespace ScriptedVendors {

// What GetCurrentSupportList gives from now on, and what it returns.
PRINTERUTIL_API void Support(std::vector<VendorInfo> vendors, int result = 0);

// One vendor: its product id, and the module that serves everything.
PRINTERUTIL_API VendorInfo Vendor(const std::string& productId, const std::string& moduleName);

// Whether the code of modules loaded from now on stays mapped when they are released, as the
// application's library keeps it; so it is at first. Without it the system unmaps them with the
// last reference, which shows how many there were, and no scan may run then. On Windows there is no
// difference: the system ends the other threads before it releases anything.
PRINTERUTIL_API void KeepMapped(bool keep);

// From now on GetDeviceHandle says that it has the module of that name, and gives a null handle.
PRINTERUTIL_API void GiveNull(const std::string& moduleName);

// The calls of VendorDllMgr in order: "GetCurrentSupportList", or "GetDeviceHandle <module>".
PRINTERUTIL_API std::vector<std::string> Requests();

// The module of that name as it was given out last, without a further reference; null when it was
// not. And the other way round.
PRINTERUTIL_API HINSTANCE Given(const std::string& moduleName);
PRINTERUTIL_API std::string NameOf(HINSTANCE module);

// Gives back every reference that the process holds to the module and returns how many there were.
// Only for modules that do not stay mapped.
PRINTERUTIL_API int ReleaseAll(const std::string& moduleName);

// Loads the module as GetDeviceHandle does, without noting it; null when it cannot be loaded.
PRINTERUTIL_API HINSTANCE Load(const std::string& moduleName);

}  // namespace ScriptedVendors
