// SPDX-License-Identifier: Apache-2.0

#include "app/commands/help_text.h"

#include <algorithm>
#include <sstream>

namespace App {

namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kExampleColumns = 40;
constexpr std::size_t kStatusColumns = 5;

// The text with each line after the first indented.
std::string Indented(const std::string& text, std::size_t columns) {
    std::string indented;
    for (const char character : text) {
        indented += character;
        if (character == '\n') {
            indented.append(columns, ' ');
        }
    }
    return indented;
}

std::string ExampleLine(const Example& example) {
    std::string line = "  devicediscover " + example.line;
    if (!example.text.empty()) {
        line.resize(std::max(line.size() + 2, kExampleColumns), ' ');
        line += example.text;
    }
    return line + "\n";
}

}  // namespace

std::string Wrapped(const std::string& text, std::size_t columns) {
    std::istringstream words(text);
    std::string wrapped;
    std::size_t width = 0;
    for (std::string word; words >> word;) {
        const bool fits = width + 1 + word.size() <= columns;
        wrapped += (wrapped.empty() ? "" : fits ? " " : "\n") + word;
        width = fits && width > 0 ? width + 1 + word.size() : word.size();
    }
    return wrapped;
}

std::string Filled(const std::string& paragraphs, std::size_t columns) {
    std::istringstream lines(paragraphs);
    std::string filled;
    std::string open;  // the part that is not filled yet
    const auto close = [&] {
        filled += open.empty() ? "" : Wrapped(open, columns) + "\n";
        open.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.front() == ' ') {
            close();
            filled += line + "\n";
        } else {
            open += line + "\n";
        }
    }
    close();
    return filled;
}

std::string OptionText(const Option& option) {
    std::string text = option.text;
    for (const std::string& choice : option.choices) {
        const bool isFirst = &choice == &option.choices.front();
        const bool isLast = &choice == &option.choices.back();
        text += (isFirst ? ": " : isLast ? " or " : ", ") + choice;
    }
    return option.standard.empty() ? text : text + " (default " + option.standard + ")";
}

std::string HelpEnd(const Command& command, const std::string& words) {
    std::string text = "Examples:\n";
    for (const Example& example : command.examples) {
        text += ExampleLine(example);
    }
    if (!command.commands.empty()) {
        text += "`" + words + " COMMAND --help` has more on each command.\n";
    }
    if (!command.details.empty()) {
        text += '\n';
        text += Filled(command.details, kColumns);
    }
    text += "\nExit status:";
    for (const ExitText& exit : command.exitTexts) {
        text += "\n  " + std::to_string(exit.status) + "  " +
                Indented(Wrapped(exit.text, kColumns - kStatusColumns), kStatusColumns);
    }
    if (command.run) {
        text +=
            "\nWith --json the reason for status 3 is also an object, with the key \"problem\".";
    }
    return text;
}

}  // namespace App
