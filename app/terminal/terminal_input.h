// SPDX-License-Identifier: Apache-2.0

#pragma once

// Typed standard input, on each operating system.

#include "base/secret.h"

namespace App {

bool InputIsTerminal();

// Reads up to the end of a line or of the input, as UTF-8 without the line's end. False when the
// input has ended and nothing was read. Waits without a time limit.
bool ReadInputLine(Base::Secret& line);

// Hides typed text on the terminal at standard input during its own lifetime.
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
