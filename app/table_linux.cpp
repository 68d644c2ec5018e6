#include <libsmartcols/libsmartcols.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>

#include "app/table.h"

namespace App {

namespace {

using Table = std::unique_ptr<libscols_table, decltype(&scols_unref_table)>;

void Require(bool success) {
    if (!success) {
        throw std::bad_alloc();  // the only way in which building a table fails
    }
}

// Serial numbers and names may be long; the other columns are needed whole.
int ColumnFlags(std::size_t column, Overflow overflow) {
    constexpr std::size_t makeAndModel = 1;
    constexpr std::size_t port = 3;
    if (column <= makeAndModel) {
        return overflow == Overflow::Cut ? SCOLS_FL_TRUNC : SCOLS_FL_WRAP;
    }
    return column == port ? SCOLS_FL_RIGHT : 0;
}

Table NewTable(std::size_t columns, Overflow overflow) {
    Table table(scols_new_table(), scols_unref_table);
    Require(table != nullptr);
    scols_table_set_termforce(table.get(), SCOLS_TERMFORCE_ALWAYS);
    scols_table_set_termwidth(table.get(), columns);
    scols_table_set_column_separator(table.get(), "  ");
    for (std::size_t column = 0; column < kTableHeadings.size(); ++column) {
        Require(scols_table_new_column(table.get(), kTableHeadings[column], 0,
                                       ColumnFlags(column, overflow)) != nullptr);
    }
    return table;
}

void AddRow(libscols_table* table, const TableRow& row) {
    libscols_line* const line = scols_table_new_line(table, nullptr);
    Require(line != nullptr);
    for (std::size_t column = 0; column < row.size(); ++column) {
        Require(scols_line_set_data(line, column, row[column].c_str()) == 0);
    }
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

std::vector<std::string> TableLines(const std::vector<Printer>& printers, std::size_t columns,
                                    Overflow overflow) {
    const Table table = NewTable(columns, overflow);
    for (const Printer& printer : printers) {
        AddRow(table.get(), RowOf(printer));
    }
    char* text = nullptr;
    Require(scols_print_table_to_string(table.get(), &text) == 0);
    const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
    return SplitLines(text);
}

}  // namespace App
