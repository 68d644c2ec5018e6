// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// Parses the list's text into the report: the module folder, the vendors and the problems. Leaves
// out a vendor with a wrong entry. A text that is not a vendor list yields only a problem.
void ParseVendorList(const std::string& text, const std::filesystem::path& path,
                     VendorListReport& report);

}  // namespace PrinterUtil
