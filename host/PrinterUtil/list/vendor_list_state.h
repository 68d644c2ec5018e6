// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <mutex>
#include <string>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// The list in use, and the module folder of the list that was read last.
class VendorListState {
public:
    // Created on first use and never destroyed: modules may be requested while the process ends.
    static VendorListState& GetInstance();

    void Use(const std::string& path);

    // Reads the list again, so that a corrected list takes effect.
    VendorListReport Read();

    // The module folder of the list that was read last; reads the list if none was read yet. Empty,
    // with the reason in `problem`, when there is no readable list.
    std::string ModuleFolder(std::string& problem);

private:
    VendorListReport ReadLocked();

    std::mutex mutex;  // guards the members below
    std::filesystem::path chosenPath;
    std::string moduleFolder;
};

}  // namespace PrinterUtil
