// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/table.h"

#include <algorithm>
#include <numeric>

#include "base/text/display_text.h"

namespace App {

namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 2;  // room for any character

std::size_t WidthOfLine(const Widths& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1));
}

// Shrinks the widest of the columns that may yield, again and again, until the line fits.
template <class MayYield>
void Shrink(Widths& widths, std::size_t columns, MayYield mayYield) {
    while (WidthOfLine(widths) > columns) {
        std::size_t* widest = nullptr;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            if (mayYield(column) && (widest == nullptr || widths[column] > *widest)) {
                widest = &widths[column];
            }
        }
        if (widest == nullptr || *widest <= kNarrowest) {
            return;
        }
        --*widest;
    }
}

// Shrinks the whole columns last.
Widths Fit(Widths widths, const std::vector<Heading>& headings, std::size_t columns) {
    Shrink(widths, columns,
           [&](std::size_t column) { return headings[column].kind == Column::Yielding; });
    Shrink(widths, columns, [](std::size_t) { return true; });
    return widths;
}

Widths NaturalWidths(const std::vector<TableRow>& rows) {
    Widths widths(rows.front().size());
    for (const TableRow& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], Base::DisplayWidth(row[column]));
        }
    }
    return widths;
}

std::string Line(const TableRow& row, const std::vector<Heading>& headings, const Widths& widths) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::string padding(widths[column] - Base::DisplayWidth(row[column]), ' ');
        line += column == 0 ? "" : std::string(kGap, ' ');
        line +=
            headings[column].kind == Column::Number ? padding + row[column] : row[column] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// Takes from each cell the text that fits into one line.
TableRow TakeLine(TableRow& rest, const Widths& widths) {
    TableRow line(rest.size());
    for (std::size_t column = 0; column < rest.size(); ++column) {
        line[column] = Base::CutToWidth(rest[column], widths[column]);
        rest[column].erase(0, line[column].size());
    }
    return line;
}

bool IsEmpty(const TableRow& row) {
    return std::all_of(row.begin(), row.end(),
                       [](const std::string& cell) { return cell.empty(); });
}

// Drops the rest of the cells that may be cut.
void CutYielding(TableRow& rest, const std::vector<Heading>& headings) {
    for (std::size_t column = 0; column < rest.size(); ++column) {
        if (headings[column].kind == Column::Yielding) {
            rest[column].clear();
        }
    }
}

}  // namespace

std::string Cell(const std::string& text) {
    return text.empty() ? "-" : Base::DisplayText(text);
}

std::vector<std::string> TableLines(const Table& table, std::size_t columns, Overflow overflow) {
    std::vector<TableRow> rows(1);
    for (const Heading& heading : table.headings) {
        rows[0].emplace_back(heading.text);
    }
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());
    const Widths widths = Fit(NaturalWidths(rows), table.headings, columns);
    std::vector<std::string> lines;
    for (TableRow& row : rows) {
        do {
            lines.push_back(Line(TakeLine(row, widths), table.headings, widths));
            if (overflow == Overflow::Cut) {
                CutYielding(row, table.headings);
            }
        } while (!IsEmpty(row));
    }
    return lines;
}

}  // namespace App
