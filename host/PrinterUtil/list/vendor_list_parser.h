#pragma once

#include <filesystem>
#include <string>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// Reads the list's text into the report: the module folder, the vendors, and what is wrong. A
// vendor whose entry is wrong is left out; a text that is no vendor list gives nothing but the
// problem.
void ParseVendorList(const std::string& text, const std::filesystem::path& path,
                     VendorListReport& report);

}  // namespace PrinterUtil
