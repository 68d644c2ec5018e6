// SPDX-License-Identifier: Apache-2.0

#include "app/terminal/table_drawing.h"

#include <algorithm>

#include "base/text/display_text.h"

namespace App {

namespace {

constexpr std::size_t kMaxRemarks = 2;
constexpr auto kShortestInterval = std::chrono::milliseconds(50);

ScreenSize Screen() {
    return OutputScreen().value_or(ScreenSize{80, 24});
}

// The number of terminal rows of the lines: a line is wrapped if the terminal has become narrower
// since.
std::size_t RowsOf(const std::vector<std::string>& lines, std::size_t columns) {
    std::size_t rows = 0;
    for (const std::string& line : lines) {
        const std::size_t width = std::max<std::size_t>(Base::DisplayWidth(line), 1);
        rows += (width + columns - 1) / columns;
    }
    return rows;
}

std::vector<std::string> Picture(Table table, const std::vector<std::string>& below,
                                 const ScreenSize& screen) {
    // Rows that have scrolled off the terminal cannot be redrawn: until the scan ends, show only
    // the latest rows that fit.
    const std::size_t otherLines = 2 + below.size();
    const std::size_t room = screen.rows > otherLines ? screen.rows - otherLines : 1;
    // A line that fills the whole width would wrap on some terminals.
    const std::size_t columns = screen.columns - 1;
    std::vector<std::string> lines;
    std::size_t hidden = table.rows.size() - std::min(table.rows.size(), room);
    table.rows.erase(table.rows.begin(), table.rows.begin() + static_cast<std::ptrdiff_t>(hidden));
    while (!table.rows.empty()) {
        lines = TableLines(table, columns, Overflow::Cut);
        if (lines.size() <= room + 1 || table.rows.size() == 1) {
            break;
        }
        // On a very narrow terminal a row takes several lines.
        table.rows.erase(table.rows.begin());
        ++hidden;
    }
    if (hidden > 0) {
        lines.push_back("(and " + std::to_string(hidden) + " found before these)");
    }
    lines.insert(lines.end(), below.begin(), below.end());
    for (std::string& line : lines) {
        line = Base::CutToWidth(line, columns);
    }
    return lines;
}

}  // namespace

std::atomic<bool> TableDrawing::isOnTerminal = false;

void TableDrawing::Show(const Table& table, bool hasNews, const std::vector<std::string>& remarks,
                        const std::string& status) {
    const auto now = std::chrono::steady_clock::now();
    // When news arrives too fast, a later call draws it.
    if (hasNews && now - lastDrawn < kShortestInterval) {
        return;
    }
    lastDrawn = now;
    isOnTerminal = true;
    std::vector<std::string> below;
    const std::size_t hidden = remarks.size() - std::min(remarks.size(), kMaxRemarks);
    for (std::size_t index = hidden; index < remarks.size(); ++index) {
        below.push_back(Base::DisplayText(remarks[index]));
    }
    below.push_back(status);
    Draw(Picture(table, below, Screen()));
}

void TableDrawing::Finish(const Table& table, const std::string& summary) {
    std::vector<std::string> lines;
    if (!table.rows.empty()) {
        lines = TableLines(table, Screen().columns, Overflow::Wrap);
        lines.push_back(summary);
        lines.emplace_back();
    }
    Draw(lines);
    isOnTerminal = false;
}

void TableDrawing::Draw(const std::vector<std::string>& lines) {
    if (lines != drawn) {
        Redraw(RowsOf(drawn, Screen().columns), lines);
        drawn = lines;
    }
}

}  // namespace App
