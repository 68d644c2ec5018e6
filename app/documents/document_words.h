// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/commands/command.h"

namespace App {

// A command of the program with its place in the tree.
struct DocumentedCommand {
    std::vector<std::string> words;  // {"devicediscover", "usb", "list"}
    Command command;
};

// The program and all of its commands, each before its own; with the options --help and --version,
// which the parser adds.
std::vector<DocumentedCommand> DocumentedCommands(const Command& program);

// The words with something between them: "devicediscover usb list", "devicediscover-usb-list".
std::string Joined(const std::vector<std::string>& words, const std::string& between);

// Each of the characters in the text is put behind a backslash.
std::string WithBackslashes(const std::string& text, const std::string& characters);

// The summary without its full stop, on one line.
std::string Title(const Command& command);

}  // namespace App
