// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>

#include "app/commands/command.h"

namespace App {

// The text in lines of at most `columns` columns, where its words allow. ASCII only.
std::string Wrapped(const std::string& text, std::size_t columns);

// Paragraphs in such lines; lines that begin with a space stay as they are.
std::string Filled(const std::string& paragraphs, std::size_t columns);

// What an option is for, with its choices and what holds without it.
std::string OptionText(const Option& option);

// The end of a command's help: examples, details, exit statuses. `words` name the command:
// "devicediscover usb".
std::string HelpEnd(const Command& command, const std::string& words);

}  // namespace App
