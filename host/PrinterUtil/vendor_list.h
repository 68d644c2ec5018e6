#pragma once

#include <cstddef>
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
// starts. Such a module costs all vendors whose modules are not loaded yet: the system loads one
// library at a time, and no program can end that from within.
PRINTERUTIL_API std::string ModuleBeingLoaded();

// The paths of all modules that are being loaded, separated by ", ", for a signal handler and for
// the end of the process: nothing is allocated, locked or logged. Writes at most `size` bytes,
// terminated, and returns the text's length; a path is cut at 1023 bytes, and of more than 16
// modules at a time some are left out.
PRINTERUTIL_API std::size_t ReadModulesBeingLoaded(char* text, std::size_t size);

}  // namespace PrinterUtil
