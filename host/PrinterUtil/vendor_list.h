#pragma once

#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

// The vendor list behind VendorDllMgr, for applications that choose it or show what is wrong with
// it. All text is UTF-8, but for paths on Linux, whose bytes stay as they are. Safe from any
// thread.
namespace PrinterUtil {

// From now on the list is this file; an empty path goes back to looking for one.
PRINTERUTIL_API void UseVendorList(const std::string& path);

// In a usbIdList "*" stands for every plugged-in printer that no vendor names.
struct VendorListReport {
    std::string path;                   // empty when no list was found
    std::string moduleFolder;           // empty when the list could not be read
    std::vector<std::string> problems;  // one line each, with the file and the place in it
    std::vector<VendorInfo> vendors;    // those without a problem
    // What was left out or put right without costing a vendor: one line each, as the problems.
    std::vector<std::string> notes;
};

// Reads the list as VendorDllMgr does, and logs nothing.
PRINTERUTIL_API VendorListReport DescribeVendorList();

struct ModuleReport {
    std::string path;            // empty when the name cannot be one
    HINSTANCE module = nullptr;  // the caller gives it back: FreeLibrary on Windows, else dlclose
    std::string problem;         // one line; empty when the module is loaded
};

// Loads a module as VendorDllMgr does, and logs nothing.
PRINTERUTIL_API ModuleReport DescribeModule(const std::string& moduleName);

// The path of a module that VendorDllMgr or DescribeModule is loading right now, on whichever
// thread; empty when there is none. For a program that waits, since a module may hang while it
// starts.
PRINTERUTIL_API std::string ModuleBeingLoaded();

}  // namespace PrinterUtil
