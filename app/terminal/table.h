// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace App {

enum class Column {
    Whole,     // never cut; wrapped only after all Yielding columns have shrunk
    Yielding,  // shrinks first if the terminal is too narrow
    Number,    // like Whole, and aligned to the right
};

struct Heading {
    const char* text;
    Column kind;
};

// As many cells as there are headings, each safe for a terminal.
using TableRow = std::vector<std::string>;

struct Table {
    std::vector<Heading> headings;
    std::vector<TableRow> rows;
};

// Makes a cell from a text that a device may have sent; "-" for an empty text.
std::string Cell(const std::string& text);

// How Yielding columns shrink if the terminal is too narrow.
enum class Overflow { Cut, Wrap };

// The lines of the table, with headings, for a terminal of `columns` columns. With Overflow::Cut
// each row is one line, unless even the columns that are never cut do not fit.
std::vector<std::string> TableLines(const Table& table, std::size_t columns, Overflow overflow);

}  // namespace App
