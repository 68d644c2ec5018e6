#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "app/terminal/console.h"
#include "app/terminal/table.h"

namespace App {

// A table on the terminal that is drawn anew as a scan goes on, with a status below it.
class TableDrawing {
public:
    TableDrawing() = default;
    ~TableDrawing() { isOnTerminal = false; }
    TableDrawing(const TableDrawing&) = delete;
    TableDrawing& operator=(const TableDrawing&) = delete;

    // `hasNews`: whether the table has changed since the last call. Of the remarks the latest are
    // shown.
    void Show(const Table& table, bool hasNews, const std::vector<std::string>& remarks,
              const std::string& status);

    // Leaves the whole table on the terminal, and `summary` below it; nothing without rows.
    void Finish(const Table& table, const std::string& summary);

    // Whether one is being drawn, which other lines would tear. Safe from any thread.
    static bool IsOnTerminal() { return isOnTerminal; }

private:
    void Draw(const std::vector<std::string>& lines);

    static std::atomic<bool> isOnTerminal;

    std::vector<std::string> drawn;
    std::chrono::steady_clock::time_point lastDrawn{};
};

}  // namespace App
