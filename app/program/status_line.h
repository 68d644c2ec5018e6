#pragma once

#include <chrono>
#include <string>

#include "app/program/settings.h"

namespace App {

// One line on the terminal that says what is being waited for, and how long already. Nothing where
// lines cannot be drawn over, or where the output is for a program.
class StatusLine {
public:
    StatusLine(const Settings& settings, std::string what);
    ~StatusLine();

    // Draws it anew.
    void Draw();
    void Draw(const std::string& text);

    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

private:
    const bool enabled;
    const std::string what;
    const std::chrono::steady_clock::time_point start;
    std::string drawn;
};

}  // namespace App
