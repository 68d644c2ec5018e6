// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/output/scan_view.h"
#include "app/terminal/console.h"

namespace App {

// Writes one line for each item as soon as it is found, and another when it has changed.
template <class Item>
class LineView : public ScanView<Item> {
public:
    using Format = std::string(const Item& item);

    explicit LineView(Format& lineFormat) : format(lineFormat) {}

    void Show(const std::vector<Item>& news, const std::string&) override {
        std::string lines;
        for (const Item& item : news) {
            lines += format(item) + "\n";
        }
        if (!lines.empty()) {
            WriteOutput(lines);
        }
    }

    void Finish() override {}

private:
    Format& format;
};

// The cells of the item's row in a table, separated by tabs.
template <class Item>
std::string TabbedLine(const Item& item) {
    std::string line;
    for (const std::string& cell : RowOf(item)) {
        line += (line.empty() ? "" : "\t") + cell;
    }
    return line;
}

}  // namespace App
