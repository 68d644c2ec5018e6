// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/items/item_list.h"
#include "app/output/scan_view.h"
#include "app/program/messages.h"
#include "app/terminal/table_drawing.h"

namespace App {

// A table on the terminal with all items found so far.
template <class Item>
class TableView : public ScanView<Item> {
public:
    void Show(const std::vector<Item>& news, const std::string& status) override {
        drawing.Show(Contents(), !news.empty(), remarks, status);
    }

    // Shows the remark below the table until the table is finished, so that it does not break the
    // table.
    void Remark(const std::string& text) override { remarks.push_back(text); }

    void Finish() override {
        const Table table = Contents();
        drawing.Finish(table, CountOf<Item>(table.rows.size()) + " found.");
        for (const std::string& remark : remarks) {
            Warn(remark);
        }
    }

private:
    static Table Contents() { return TableOf(ItemList<Item>::GetInstance().GetItems()); }

    TableDrawing drawing;
    std::vector<std::string> remarks;
};

}  // namespace App
