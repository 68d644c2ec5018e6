#pragma once

#include <filesystem>
#include <mutex>
#include <string>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// Which list is in use, and where the modules of the list that was read last stand.
class VendorListState {
public:
    // Made on first use and never destroyed: modules may be asked for while the process ends.
    static VendorListState& GetInstance();

    void Use(const std::string& path);

    // Reads the list anew, so that one that was put right counts.
    VendorListReport Read();

    // The folder of the list that was read last; reads the list when none was. Empty, with the
    // reason, when there is no readable list.
    std::string ModuleFolder(std::string& problem);

private:
    VendorListReport ReadLocked();

    std::mutex mutex;  // guards what follows
    std::filesystem::path chosenPath;
    std::string moduleFolder;
};

}  // namespace PrinterUtil
