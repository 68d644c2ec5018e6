#pragma once

#include <string>
#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

namespace PrinterUtil {

// Whether a vendor serves printers whose identifiers its list does not name: "*" is one of them.
bool ServesAnyPrinter(const VendorInfo& vendor);

// Adds to each vendor that serves any printer the identifiers that no vendor names: a vendor's own
// module comes before one for all printers. The "*" stays.
void AddUnnamed(std::vector<VendorInfo>& vendors, const std::vector<std::string>& identifiers);

// The hardware identifiers of the printers that are plugged in now.
std::vector<std::string> PluggedInIdentifiers();

}  // namespace PrinterUtil
