// SPDX-License-Identifier: Apache-2.0

#include "app/commands/help_text.h"
#include "app/documents/completions.h"

namespace App {

namespace {

std::string FunctionOf(const std::vector<std::string>& path) {
    return "_" + Joined(path, "_");
}

// In single quotes.
std::string ZshQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + "'";
}

std::string Action(const Option& option) {
    if (option.valueName == "FILE") {
        return "_files";
    }
    return option.choices.empty() ? " " : "(" + Joined(option.choices, " ") + ")";
}

std::string Described(const Option& option) {
    const std::string text = WithBackslashes(Wrapped(OptionText(option), 1000), "[]:\\");
    if (option.IsArgument()) {
        return ZshQuoted((option.isRequired ? ":" : "::") + option.name + ": ");
    }
    if (option.IsFlag()) {
        return ZshQuoted(option.name + "[" + text + "]");
    }
    return ZshQuoted(option.name + "[" + text + "]" + (option.isValueOptional ? "::" : ":") +
                     option.valueName + ":" + Action(option));
}

std::string Arguments(const Command& command) {
    std::string text;
    for (const Option& option : command.options) {
        text += " \\\n        " + Described(option);
    }
    return text;
}

std::string GroupFunction(const std::vector<std::string>& path, const Command& command) {
    std::string commands;
    std::string cases;
    for (const Command& inner : command.commands) {
        std::vector<std::string> words = path;
        words.push_back(inner.name);
        commands +=
            "\n            " + ZshQuoted(inner.name + ":" + WithBackslashes(Title(inner), ":\\"));
        cases += "        " + inner.name + ") " + FunctionOf(words) + " ;;\n";
    }
    return FunctionOf(path) +
           "() {\n    local context state state_descr line\n    typeset -A opt_args\n" +
           "    _arguments -C" + Arguments(command) +
           " \\\n        ': :->command' '*:: :->rest'\n"
           "    case $state in\n    command)\n        local -a commands=(" +
           commands +
           ")\n        _describe command commands\n        ;;\n"
           "    rest)\n        case $line[1] in\n" +
           cases + "        esac\n        ;;\n    esac\n}\n\n";
}

}  // namespace

std::string ZshCompletion(const std::vector<DocumentedCommand>& commands) {
    std::string text =
        "#compdef devicediscover\n"
        "# SPDX-License-Identifier: Apache-2.0\n"
        "# Completion of devicediscover for zsh.\n\n";
    for (const auto& [path, command] : commands) {
        text += command.commands.empty()
                    ? FunctionOf(path) + "() {\n    _arguments" + Arguments(command) + "\n}\n\n"
                    : GroupFunction(path, command);
    }
    return text + "_devicediscover \"$@\"\n";
}

}  // namespace App
