// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "DeviceDiscover/printer_sdk.h"

namespace Bench {

// Makes these the printers that the adapter knows.
PRINTERADAPTER_API void KnowPrinters(std::vector<PrinterSdk::PrinterProperty> printers);

}  // namespace Bench
