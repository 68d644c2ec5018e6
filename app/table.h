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

// What becomes of texts that a terminal is too narrow for.
enum class Overflow { Cut, Wrap };

// A table with headings for a terminal of that many columns. With Overflow::Cut each printer is one
// line.
std::vector<std::string> TableLines(const std::vector<Printer>& printers, std::size_t columns,
                                    Overflow overflow);

}  // namespace App
