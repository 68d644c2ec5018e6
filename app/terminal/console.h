#pragma once

// The program's arguments, its standard streams and the screen behind them, as each operating
// system has them. All text is UTF-8.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace App {

// Thrown when whoever read standard output has gone: there is nothing left to do, and nothing to
// complain about.
struct OutputClosed {};

// The arguments behind the program's own name.
std::vector<std::string> Arguments(int argc, char** argv);

// Readies the standard streams; the first call of a program, before any vendor's module is loaded.
// What the program writes to standard output goes there; what anything else in the process writes
// goes to standard error. A stream that was closed stays out of the way of files opened later:
// reading from it gives an end, writing to it a Problem.
void PrepareConsole();

// Writes all of `text` to standard output at once. Throws OutputClosed, or Problem when it cannot
// be written. A reader that takes nothing for a second, the program having been asked to end,
// counts as gone.
void WriteOutput(std::string_view text);

// For the end of the process, also in a signal handler and while other threads write: writes the
// line, which is not long, at the end of what was written so far, without memory and without
// waiting long. Not while another write is under way, or where one was broken off.
void WriteLastLine(std::string_view line);

// Whether the reader of standard output is known to have gone.
bool OutputReaderIsGone();

// Writes `text` to standard error, as far as that works.
void WriteError(std::string_view text);

bool ErrorIsTerminal();

struct ScreenSize {
    std::size_t columns;
    std::size_t rows;
};

// The size of the terminal at standard output; nothing when there is none, or none on which lines
// can be drawn over.
std::optional<ScreenSize> OutputScreen();

// Draws `lines` over the last `rowsBefore` rows of the terminal, the one with the cursor included,
// and leaves the cursor behind the last line.
void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines);

}  // namespace App
