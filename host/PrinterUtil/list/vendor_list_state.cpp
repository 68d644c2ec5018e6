// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/vendor_list_state.h"

#include <algorithm>

#include "host/PrinterUtil/list/plugged_in.h"
#include "host/PrinterUtil/list/vendor_list_finder.h"
#include "host/PrinterUtil/list/vendor_list_parser.h"
#include "host/common/paths.h"

namespace PrinterUtil {

VendorListState& VendorListState::GetInstance() {
    static VendorListState& instance = *new VendorListState;
    return instance;
}

void VendorListState::Use(const std::string& path) {
    const std::lock_guard lock(mutex);
    // Make the path absolute: the program may change its folder.
    chosenPath = Host::AbsolutePath(Host::PathFromUtf8(path));
    moduleFolder.clear();
}

VendorListReport VendorListState::Read() {
    const std::lock_guard lock(mutex);
    return ReadLocked();
}

VendorListReport VendorListState::ReadLocked() {
    VendorListReport report;
    const FoundList found = FindVendorList(chosenPath);
    report.path = Host::PathToUtf8(found.path);
    if (!found.note.empty()) {
        report.notes.push_back(found.note);
    }
    if (found.problem.empty()) {
        ParseVendorList(found.text, found.path, report);
    } else {
        report.problems.push_back(found.problem);
    }
    if (std::any_of(report.vendors.begin(), report.vendors.end(), ServesAnyPrinter)) {
        AddUnnamed(report.vendors, PluggedInIdentifiers());
    }
    moduleFolder = report.moduleFolder;
    return report;
}

std::string VendorListState::ModuleFolder(std::string& problem) {
    const std::lock_guard lock(mutex);
    if (moduleFolder.empty()) {
        const VendorListReport report = ReadLocked();
        if (moduleFolder.empty()) {
            problem =
                report.problems.empty() ? std::string("no module folder") : report.problems.front();
        }
    }
    return moduleFolder;
}

}  // namespace PrinterUtil
