// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "app/outcome/exit_status.h"

namespace App {

using Seconds = std::chrono::duration<double>;

// An option of a command, or an argument that is known by its position.
struct Option {
    // Stores the value that the user gave. Returns why it cannot be used; empty if it can.
    using Take = std::function<std::string(const std::string& value)>;

    std::string name;       // "--seconds"; "SERIAL" for an argument by position
    std::string valueName;  // "N"; empty for a flag, and for an argument by position
    std::string text;       // what it is for
    Take take;              // a flag's value is empty

    std::vector<std::string> choices = {};  // the only values; empty: any that `take` accepts
    std::string standard = {};              // the value without the option; empty: none to name
    bool isRequired = false;
    bool isValueOptional = false;            // without a value, `take` gets an empty one
    bool isCommon = false;                   // all commands have it
    std::vector<std::string> excludes = {};  // options that cannot be given with this one
    std::vector<std::string> needs = {};     // options that must be given with this one

    bool IsArgument() const { return !name.starts_with('-'); }
    bool IsFlag() const { return !IsArgument() && valueName.empty(); }
};

// A line that a user may type, and what it is for.
struct Example {
    std::string line;
    std::string text = {};
};

struct ExitText {
    ExitStatus status;
    std::string text;
};

// A command as data: parser, help and documents are made from it. A group of commands has no `run`.
// Each command also has the option --help, the program itself --version.
struct Command {
    std::string name;
    std::string summary;
    std::vector<Example> examples = {};
    // Paragraphs, separated by empty lines; lines that begin with a space stay as they are.
    std::string details = {};
    std::vector<ExitText> exitTexts = {};
    std::function<ExitStatus()> run = {};
    std::vector<Option> options = {};
    std::vector<Command> commands = {};

    // Each adds an option that stores its value in `value`, which must outlive the command. The
    // result is valid until the next is added.
    Option& AddFlag(const std::string& name, bool& value, const std::string& text);
    Option& AddText(const std::string& name, const std::string& valueName, std::string& value,
                    const std::string& text,
                    const std::function<std::string(const std::string&)>& check = {});
    // The name of a file. An empty one is refused: it usually comes from an unset shell variable.
    Option& AddFile(const std::string& name, std::string& value, const std::string& text);
    // A time from 0.1 to 86400 seconds.
    Option& AddSeconds(const std::string& name, Seconds& value, const std::string& text);
    Option& AddSeconds(const std::string& name, std::function<void(Seconds)> set,
                       const std::string& text);
    Option& AddWholeNumber(const std::string& name, int& value, const std::string& text);

    // Whether it has the option or argument.
    bool Has(const std::string& option) const;
};

}  // namespace App
