// SPDX-License-Identifier: Apache-2.0

#include "app/items/printer_table.h"

namespace App {

PrinterRow RowOf(const Printer& printer) {
    return {Cell(printer.serialNumber), Cell(printer.makeAndModel), Cell(printer.address),
            printer.port == 0 ? "-" : std::to_string(printer.port), Cell(printer.vendor)};
}

Table TableOf(const std::vector<Printer>& printers) {
    // Serial number, address and port identify a printer and tell how to reach it.
    Table table{{{"SERIAL NUMBER", Column::Whole},
                 {"MAKE AND MODEL", Column::Yielding},
                 {"ADDRESS", Column::Whole},
                 {"PORT", Column::Number},
                 {"VENDOR", Column::Yielding}},
                {}};
    for (const Printer& printer : printers) {
        const PrinterRow row = RowOf(printer);
        table.rows.emplace_back(row.begin(), row.end());
    }
    return table;
}

}  // namespace App
