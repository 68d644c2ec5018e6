#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace App {

enum class Column {
    Whole,     // needed whole: never cut, and wrapped only when all others have given way
    Yielding,  // gives way first where the terminal is too narrow
    Number,    // needed whole, and aligned to the right
};

struct Heading {
    const char* text;
    Column kind;
};

// As many cells as there are headings, each fit for a terminal.
using TableRow = std::vector<std::string>;

struct Table {
    std::vector<Heading> headings;
    std::vector<TableRow> rows;
};

// A text that a device may have sent as a cell; "-" for one that is not known.
std::string Cell(const std::string& text);

// What becomes of texts that may give way, when a terminal is too narrow for them.
enum class Overflow { Cut, Wrap };

// The table with its headings for a terminal of that many columns. With Overflow::Cut each row is
// one line, unless not even what is needed whole fits into one.
std::vector<std::string> TableLines(const Table& table, std::size_t columns, Overflow overflow);

}  // namespace App
