// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/items/printer.h"
#include "app/terminal/table.h"

namespace App {

// Serial number, make and model, address, port and vendor, safe for a terminal; "-" if not known.
using PrinterRow = std::array<std::string, 5>;
PrinterRow RowOf(const Printer& printer);

Table TableOf(const std::vector<Printer>& printers);

}  // namespace App
