// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/PrinterUtil/export.h"
#include "platform/os.h"

// One supported vendor. Passed between libraries inside a vector: the order of the members is
// fixed.
struct VendorInfo {
    std::string productId;   // the model identifier that this vendor's devices carry
    std::string reserved1;   // not read by the broker
    std::string reserved2;   // not read by the broker
    std::string usbIdList;   // USB hardware identifiers (VID_vvvv&PID_pppp), separated by blanks
    std::string vendorName;  // the module with the network and USB entry points
    std::string scanModuleName;  // the module with the scan entry points
};

// The application's vendor-module manager, from the library PrinterUtil. A replacement of the
// library provides this class. Called from any thread, from several at once.
class PRINTERUTIL_API VendorDllMgr {
public:
    static VendorDllMgr& GetInstance();

    // Appends the supported vendors to `vendors`. The broker ignores the result; to the broker, an
    // empty list means that no vendor is supported.
    int GetCurrentSupportList(std::vector<VendorInfo>& vendors);

    // Loads the module `moduleName` and stores its handle in `module`. Returns true with a handle,
    // never null, in which symbols can be looked up (GetProcAddress on Windows, else dlsym). Each
    // true result adds one reference, which the caller releases (FreeLibrary, else dlclose).
    // Returns false, with `module` untouched, when there is no such module. The module stays in
    // memory until the process ends, even without references: its own threads may still run.
    bool GetDeviceHandle(HINSTANCE& module, const std::string& moduleName);

    VendorDllMgr(const VendorDllMgr&) = delete;
    VendorDllMgr& operator=(const VendorDllMgr&) = delete;

private:
    VendorDllMgr() = default;
    ~VendorDllMgr() = default;
};
