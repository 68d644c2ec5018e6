// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "app/commands/command.h"

namespace App {

// What the arguments ask for.
struct ParsedArguments {
    const Command* command;  // the innermost that they name
    std::string words;       // its name: "devicediscover usb list"
    std::string output;      // help or version, to be written instead of running the command
    std::string problem;     // why the arguments are wrong; empty if they are not
};

// Parses the arguments and stores the values of options. No text repeats an argument that may be a
// pass phrase.
ParsedArguments Parse(const Command& program, std::vector<std::string> arguments);

}  // namespace App
