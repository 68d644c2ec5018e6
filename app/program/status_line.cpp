// SPDX-License-Identifier: Apache-2.0

#include "app/program/status_line.h"

#include <utility>

#include "app/program/settings.h"
#include "app/terminal/console.h"
#include "base/text/display_text.h"

namespace App {

StatusLine::StatusLine(std::string awaited)
    : enabled(!WritesJson() && DrawsOnTerminal()),
      what(std::move(awaited)),
      start(std::chrono::steady_clock::now()) {}

StatusLine::~StatusLine() {
    if (drawn.empty()) {
        return;
    }
    try {
        Redraw(1, {""});
    } catch (const std::exception&) {
        drawn.clear();  // the next write reports the error
    }
}

void StatusLine::Draw() {
    const auto waited =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
    Draw(what + ", " + std::to_string(waited.count()) + " s (Ctrl-C stops)");
}

void StatusLine::Draw(const std::string& text) {
    if (!enabled || text == drawn) {
        return;
    }
    const std::size_t columns = OutputScreen().value_or(ScreenSize{80, 24}).columns;
    // A line that fills the whole width would wrap on some terminals.
    Redraw(1, {std::string(Base::CutToWidth(Base::DisplayText(text), columns - 1))});
    drawn = text;
}

}  // namespace App
