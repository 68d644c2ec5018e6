// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>

namespace App {

// A line on the terminal that says what the program waits for, and for how long. Shows nothing if
// lines cannot be redrawn, or if the output is for a program.
class StatusLine {
public:
    explicit StatusLine(std::string what);
    ~StatusLine();

    // Redraws the line.
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
