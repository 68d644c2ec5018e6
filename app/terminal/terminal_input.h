#pragma once

// Standard input as people type it, as each operating system has it.

#include "base/secret.h"

namespace App {

bool InputIsTerminal();

// Reads up to the end of a line, or of the input; what was read is UTF-8 without the line's end.
// False when the input has ended and nothing was read. Waits as long as it takes.
bool ReadInputLine(Base::Secret& line);

// While it lives, the terminal at standard input does not show what is typed.
class HiddenTyping {
public:
    HiddenTyping();
    ~HiddenTyping();
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

private:
    struct Mode;
    Mode* before;
};

}  // namespace App
