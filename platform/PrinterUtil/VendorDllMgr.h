#pragma once

#include <string>
#include <vector>

#include "platform/PrinterUtil/export.h"
#include "platform/os.h"

// One supported vendor. It crosses a library border inside a vector: the order of its members is
// fixed.
struct VendorInfo {
    std::string productId;   // the model identifier that this vendor's devices carry
    std::string reserved1;   // not read by the broker
    std::string reserved2;   // not read by the broker
    std::string usbIdList;   // USB hardware identifiers (VID_vvvv&PID_pppp), separated by blanks
    std::string vendorName;  // the module with the network and USB entry points
    std::string scanModuleName;  // the module with the scan entry points
};

// The application's vendor-module manager, of the library PrinterUtil. Whoever replaces that
// library provides this class. Called from any thread, also from several at once.
class PRINTERUTIL_API VendorDllMgr {
public:
    static VendorDllMgr& GetInstance();

    // Appends the supported vendors to `vendors`. The broker ignores the result; an empty list is
    // how it learns that nothing is supported.
    int GetCurrentSupportList(std::vector<VendorInfo>& vendors);

    // Loads the module of that name and puts its handle into `module`. True when symbols can be
    // looked up in it (GetProcAddress on Windows, else dlsym), and so not null; each true result
    // adds one reference, which the caller gives back (FreeLibrary, else dlclose). False, with
    // `module` untouched, when there is no such module. The module stays in memory until the
    // process ends, also without a reference: threads of its own may run.
    bool GetDeviceHandle(HINSTANCE& module, const std::string& moduleName);

    VendorDllMgr(const VendorDllMgr&) = delete;
    VendorDllMgr& operator=(const VendorDllMgr&) = delete;

private:
    VendorDllMgr() = default;
    ~VendorDllMgr() = default;
};
