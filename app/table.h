#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "app/printer.h"

namespace App {

inline constexpr std::array kTableHeadings{"SERIAL NUMBER", "MAKE AND MODEL", "ADDRESS", "PORT",
                                           "VENDOR"};
using TableRow = std::array<std::string, kTableHeadings.size()>;

// The cells of a printer's row, fit for a terminal; "-" for what is not known.
TableRow RowOf(const Printer& printer);

// A table with headings for a terminal of that many columns: texts are cut where it is too narrow.
std::vector<std::string> TableLines(const std::vector<Printer>& printers, std::size_t columns);

}  // namespace App
