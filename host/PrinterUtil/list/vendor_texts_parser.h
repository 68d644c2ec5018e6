// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/PrinterUtil/vendor_list.h"

namespace PrinterUtil {

// Reads "results" and "services" of a vendor's entry, which is an object. A wrong text is left out,
// with a note that begins with `place`; it does not disable the vendor.
VendorTexts ParseVendorTexts(const nlohmann::json& entry, const std::string& place,
                             std::vector<std::string>& notes);

}  // namespace PrinterUtil
