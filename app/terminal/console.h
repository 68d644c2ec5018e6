// SPDX-License-Identifier: Apache-2.0

#pragma once

// The program's arguments, standard streams and screen, on each operating system. All text is
// UTF-8.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/outcome/ending.h"

namespace App {

// Thrown when the reader of standard output has gone. The program should end without an error
// message.
class OutputClosed : public Ending {
public:
    OutputClosed() : Ending("the reader of standard output has gone") {}
};

// The arguments after the program's name.
std::vector<std::string> Arguments(int argc, char** argv);

// Prepares the standard streams. Must be the program's first call, before any vendor's module is
// loaded. Only WriteOutput writes to standard output; text that other code in the process writes
// there goes to standard error. The descriptor of a closed stream is not reused by later files:
// reading gives the end of input, writing throws Problem.
void PrepareConsole();

// Writes all of `text` to standard output at once. Throws OutputClosed, or Problem when it cannot
// be written. After a request to end the program, a reader that takes nothing for one second counts
// as gone.
void WriteOutput(std::string_view text);

// For the end of the process, also in a signal handler and while other threads write: writes the
// line, which is not long, at the end of what was written so far, without memory and without
// waiting long. Not while another write is under way, or where one was broken off.
void WriteLastLine(std::string_view line);

// Whether the reader of standard output is known to have gone.
bool OutputReaderIsGone();

// Writes `text` to standard error; ignores failures.
void WriteError(std::string_view text);

bool ErrorIsTerminal();

struct ScreenSize {
    std::size_t columns;
    std::size_t rows;
};

// The size of the terminal at standard output; nothing when there is none, or when it cannot redraw
// lines.
std::optional<ScreenSize> OutputScreen();

// Draws `lines` over the last `rowsBefore` rows of the terminal, including the row of the cursor,
// and leaves the cursor at the end of the last line.
void Redraw(std::size_t rowsBefore, const std::vector<std::string>& lines);

}  // namespace App
