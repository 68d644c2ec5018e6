#include "app/table.h"

#include "app/text.h"

namespace App {

namespace {

std::string Cell(const std::string& text) {
    return text.empty() ? "-" : DisplayText(text);
}

}  // namespace

TableRow RowOf(const Printer& printer) {
    return {Cell(printer.serialNumber), Cell(printer.makeAndModel), Cell(printer.address),
            printer.port == 0 ? "-" : std::to_string(printer.port), Cell(printer.vendor)};
}

}  // namespace App
