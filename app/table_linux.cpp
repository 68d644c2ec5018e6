#include <libsmartcols/libsmartcols.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>

#include "app/table.h"

namespace App {

namespace {

using SystemTable = std::unique_ptr<libscols_table, decltype(&scols_unref_table)>;

void Require(bool success) {
    if (!success) {
        throw std::bad_alloc();  // the only way in which building a table fails
    }
}

int ColumnFlags(Column column, Overflow overflow) {
    if (column == Column::Yielding) {
        return overflow == Overflow::Cut ? SCOLS_FL_TRUNC : SCOLS_FL_WRAP;
    }
    return column == Column::Number ? SCOLS_FL_RIGHT : 0;
}

SystemTable NewTable(const std::vector<Heading>& headings, std::size_t columns, Overflow overflow) {
    SystemTable table(scols_new_table(), scols_unref_table);
    Require(table != nullptr);
    scols_table_set_termforce(table.get(), SCOLS_TERMFORCE_ALWAYS);
    scols_table_set_termwidth(table.get(), columns);
    scols_table_set_column_separator(table.get(), "  ");
    for (const Heading& heading : headings) {
        Require(scols_table_new_column(table.get(), heading.text, 0,
                                       ColumnFlags(heading.kind, overflow)) != nullptr);
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

std::vector<std::string> TableLines(const Table& table, std::size_t columns, Overflow overflow) {
    const SystemTable lines = NewTable(table.headings, columns, overflow);
    for (const TableRow& row : table.rows) {
        AddRow(lines.get(), row);
    }
    char* text = nullptr;
    Require(scols_print_table_to_string(lines.get(), &text) == 0);
    const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
    return SplitLines(text);
}

}  // namespace App
