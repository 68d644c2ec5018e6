// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/output/line_view.h"
#include "app/program/settings.h"
#include "app/terminal/console.h"
#include "app/terminal/table.h"

namespace App {

// Writes items: as a table on a terminal, as lines elsewhere, as `json` lines on request.
template <class Item>
void WriteItems(const std::vector<Item>& items, typename LineView<Item>::Format& json) {
    std::string text;
    if (const auto screen = OutputScreen(); screen && !WritesJson()) {
        for (const std::string& line :
             TableLines(TableOf(items), screen->columns, Overflow::Wrap)) {
            text += line + "\n";
        }
    } else {
        for (const Item& item : items) {
            text += (WritesJson() ? json(item) : TabbedLine(item)) + "\n";
        }
    }
    WriteOutput(text);
}

}  // namespace App
