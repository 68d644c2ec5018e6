// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

// The vendor list of VendorDllMgr, for applications that choose the list or show its errors. All
// text is UTF-8, except paths on Linux, whose bytes are unchanged. Safe from any thread.
namespace PrinterUtil {

// Uses this file as the list from now on; an empty path restores the search for the list.
PRINTERUTIL_API void UseVendorList(const std::string& path);

// What a vendor's result means to a user, in the words of its entry in the list.
struct VendorResult {
    enum class Outcome {
        kKnown,
        kUnknown,      // the vendor could not find out
        kUnconfirmed,  // the printer accepted the network, but may not have joined it
    };

    int result;
    std::string entryPoint;  // empty: every entry point without a text of its own for this result
    std::string meaning;
    Outcome outcome = Outcome::kKnown;
};

// The texts that a vendor's entry brings. At most 500 of each kind, each of at most 1000 bytes and
// without control characters.
struct VendorTexts {
    std::string productId;
    std::vector<VendorResult> results;
    std::map<int, std::string> services;  // the names of the kinds of service of its printers
};

// In a usbIdList "*" matches every plugged-in printer that no vendor lists.
struct VendorListReport {
    std::string path;                   // empty when no list was found
    std::string moduleFolder;           // empty when the list could not be read
    std::vector<std::string> problems;  // one line each, with the file and the position in it
    std::vector<VendorInfo> vendors;    // only vendors without a problem
    // What was ignored or corrected without disabling a vendor: one line each, like `problems`.
    std::vector<std::string> notes;
    std::vector<VendorTexts> texts;  // of the vendors that bring texts
};

// Reads the list like VendorDllMgr, but logs nothing.
PRINTERUTIL_API VendorListReport DescribeVendorList();

struct ModuleReport {
    std::string path;            // empty when the name is invalid
    HINSTANCE module = nullptr;  // the caller releases it: FreeLibrary on Windows, else dlclose
    std::string problem;         // one line; empty when the module is loaded
};

// Loads a module like VendorDllMgr, but logs nothing.
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
