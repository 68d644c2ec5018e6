// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "platform/PrinterUtil/VendorDllMgr.h"

namespace Bench {

// Makes these the supported vendors. Their module names are paths of files.
PRINTERUTIL_API void SupportVendors(std::vector<VendorInfo> vendors);

}  // namespace Bench
