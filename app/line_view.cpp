#include "app/line_view.h"

#include "app/console.h"
#include "app/table.h"

namespace App {

void LineView::Show(const std::vector<Printer>& news, const std::string&) {
    std::string lines;
    for (const Printer& printer : news) {
        lines += format(printer) + "\n";
    }
    if (!lines.empty()) {
        WriteOutput(lines);
    }
}

std::string TabbedLine(const Printer& printer) {
    std::string line;
    for (const std::string& cell : RowOf(printer)) {
        line += (line.empty() ? "" : "\t") + cell;
    }
    return line;
}

}  // namespace App
