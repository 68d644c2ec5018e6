#include "app/table_view.h"

#include <algorithm>

#include "app/messages.h"
#include "app/printer_list.h"
#include "app/table.h"
#include "app/text.h"

namespace App {

namespace {

constexpr auto kShortestInterval = std::chrono::milliseconds(50);

ScreenSize Screen() {
    return OutputScreen().value_or(ScreenSize{80, 24});
}

// How many rows of the terminal the lines take: a line drawn before the terminal became narrower is
// wrapped.
std::size_t RowsOf(const std::vector<std::string>& lines, std::size_t columns) {
    std::size_t rows = 0;
    for (const std::string& line : lines) {
        const std::size_t width = std::max<std::size_t>(DisplayWidth(line), 1);
        rows += (width + columns - 1) / columns;
    }
    return rows;
}

}  // namespace

void TableView::Show(const std::vector<Printer>& news, const std::string& status) {
    const auto now = std::chrono::steady_clock::now();
    // A flood of printers is drawn with the next call.
    if (!news.empty() && now - lastDrawn < kShortestInterval) {
        return;
    }
    lastDrawn = now;
    Draw(Picture(Screen(), status));
}

void TableView::Finish() {
    const std::vector<Printer> printers = PrinterList::GetInstance().GetPrinters();
    std::vector<std::string> lines;
    if (!printers.empty()) {
        lines = TableLines(printers, Screen().columns, Overflow::Wrap);
        lines.push_back(CountOfPrinters(printers.size()) + " found.");
        lines.emplace_back();
    }
    Draw(lines);
}

void TableView::Draw(const std::vector<std::string>& lines) {
    if (lines != drawn) {
        Redraw(RowsOf(drawn, Screen().columns), lines);
        drawn = lines;
    }
}

std::vector<std::string> TableView::Picture(const ScreenSize& screen,
                                            const std::string& status) const {
    std::vector<Printer> printers = PrinterList::GetInstance().GetPrinters();
    // What has scrolled off the terminal cannot be drawn over: the latest printers that fit are
    // shown until the scan ends.
    constexpr std::size_t otherLines = 3;
    const std::size_t room = screen.rows > otherLines ? screen.rows - otherLines : 1;
    // A line that fills the terminal would wrap on some.
    const std::size_t columns = screen.columns - 1;
    std::vector<std::string> lines;
    std::size_t hidden = 0;
    if (printers.size() > room) {
        hidden = printers.size() - room;
        printers.erase(printers.begin(), printers.begin() + static_cast<std::ptrdiff_t>(hidden));
    }
    if (!printers.empty()) {
        lines = TableLines(printers, columns, Overflow::Cut);
    }
    if (hidden > 0) {
        lines.push_back("(and " + std::to_string(hidden) + " found before these)");
    }
    lines.push_back(status);
    for (std::string& line : lines) {
        line = CutToWidth(line, columns);
    }
    return lines;
}

}  // namespace App
