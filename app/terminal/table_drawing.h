// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "app/terminal/console.h"
#include "app/terminal/table.h"

namespace App {

// A table on the terminal, redrawn during a scan, with a status below it.
class TableDrawing {
public:
    TableDrawing() = default;
    ~TableDrawing() { isOnTerminal = false; }
    TableDrawing(const TableDrawing&) = delete;
    TableDrawing& operator=(const TableDrawing&) = delete;

    // `hasNews`: whether the table has changed since the last call. Shows the latest remarks.
    void Show(const Table& table, bool hasNews, const std::vector<std::string>& remarks,
              const std::string& status);

    // Leaves the whole table on the terminal, with `summary` below it; leaves nothing if there are
    // no rows.
    void Finish(const Table& table, const std::string& summary);

    // Whether a table is on the terminal, which other lines would break. Safe from any thread.
    static bool IsOnTerminal() { return isOnTerminal; }

private:
    void Draw(const std::vector<std::string>& lines);

    static std::atomic<bool> isOnTerminal;

    std::vector<std::string> drawn;
    std::chrono::steady_clock::time_point lastDrawn{};
};

}  // namespace App
