// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

namespace PrinterUtil {

// Whether the vendor's usbIdList contains "*".
bool ServesAnyPrinter(const VendorInfo& vendor);

// Adds to each vendor with "*" the identifiers that no vendor lists, so that a vendor's own module
// takes precedence. The "*" stays.
void AddUnnamed(std::vector<VendorInfo>& vendors, const std::vector<std::string>& identifiers);

// The hardware identifiers of the plugged-in printers.
std::vector<std::string> PluggedInIdentifiers();

}  // namespace PrinterUtil
