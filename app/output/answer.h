// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "app/terminal/console.h"

namespace App {

// Writes what a command was asked. A reader that has gone does not change what has happened: unlike
// a list that nobody reads on, the command ends with the status of its answer.
inline void WriteAnswer(std::string_view text) {
    try {
        WriteOutput(text);
    } catch (const OutputClosed&) {  // nobody is there to be told
    }
}

}  // namespace App
