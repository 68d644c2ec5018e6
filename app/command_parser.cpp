// SPDX-License-Identifier: Apache-2.0

#include "app/command_parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include "app/commands/help_text.h"

namespace App {

namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kOptionColumns = 34;

// Why the option does not accept the value; empty if it does.
std::string Refusal(const Option& option, const std::string& value) {
    const std::vector<std::string>& choices = option.choices;
    if (choices.empty() || std::find(choices.begin(), choices.end(), value) != choices.end()) {
        return option.take(value);
    }
    std::string text;
    for (const std::string& choice : choices) {
        text += (text.empty() ? "" : ", ") + choice;
    }
    return "'" + value + "' is none of " + text;
}

void AddOption(CLI::App& app, const Option& option) {
    const std::string text = Wrapped(OptionText(option), kColumns - kOptionColumns);
    if (option.IsFlag()) {
        // Refuses any value except a redundant `true`.
        app.add_flag_callback(
               option.name, [&option] { option.take({}); }, text)
            ->disable_flag_override();
        return;
    }
    const auto take = [&option](const std::string& value) {
        const std::string refusal = Refusal(option, value);
        if (!refusal.empty()) {
            throw CLI::ValidationError(option.name, refusal);
        }
    };
    CLI::Option& added = *app.add_option_function<std::string>(option.name, take, text);
    added.required(option.isRequired);
    if (option.isValueOptional) {
        added.expected(0, 1)->type_name("[" + option.valueName + "]");
    } else {
        added.type_name(option.valueName);
    }
}

void AddTo(CLI::App& app, const Command& command, const std::string& words) {
    for (const Option& option : command.options) {
        AddOption(app, option);
        if (option.isCommon) {
            app.get_option(option.name)->group("Options of every command");
        }
    }
    for (const Option& option : command.options) {
        for (const std::string& other : option.excludes) {
            app.get_option(option.name)->excludes(other);
        }
        for (const std::string& other : option.needs) {
            app.get_option(option.name)->needs(app.get_option(other));
        }
    }
    app.footer(HelpEnd(command, words));
    app.require_subcommand(command.commands.empty() ? 0 : 1);
    for (const Command& inner : command.commands) {
        AddTo(*app.add_subcommand(inner.name, inner.summary), inner, words + " " + inner.name);
    }
}

// The innermost chosen command: the same in both trees.
struct Choice {
    const CLI::App* app;
    const Command* command;
    std::string words;
};

Choice Chosen(const CLI::App& app, const Command& program) {
    Choice choice{&app, &program, program.name};
    while (!choice.app->get_subcommands().empty()) {
        choice.app = choice.app->get_subcommands().front();
        const std::string name = choice.app->get_name();
        const std::vector<Command>& inner = choice.command->commands;
        choice.command = &*std::find_if(inner.begin(), inner.end(),
                                        [&](const Command& one) { return one.name == name; });
        choice.words += " " + name;
    }
    return choice;
}

// "scan, state or vendors"
std::string NamesOf(const std::vector<Command>& commands) {
    std::string text;
    for (const Command& command : commands) {
        const bool isFirst = &command == &commands.front();
        const bool isLast = &command == &commands.back();
        text += (isFirst ? "" : isLast ? " or " : ", ") + command.name;
    }
    return text;
}

// The option's name without its value, which may be a pass phrase: "--name" or "-x".
std::string WithoutValue(const std::string& argument) {
    if (!argument.starts_with('-')) {
        return argument;
    }
    constexpr std::string_view ofNames = "-abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string name = argument.substr(0, argument.find_first_not_of(ofNames));
    return name.starts_with("--") ? name : name.substr(0, 2);
}

std::string AboutExtras(const Choice& choice) {
    if (choice.command->Has("--pass-phrase-file")) {
        return "too many arguments. A pass phrase is never an argument: type it when asked, or use"
               "\n--pass-phrase-file";
    }
    const std::vector<std::string> extras = choice.app->remaining();
    if (!extras.empty()) {
        return "there is no argument or option '" + WithoutValue(extras[0]) + "'";
    }
    for (const CLI::App* outer = choice.app->get_parent(); outer != nullptr;
         outer = outer->get_parent()) {
        const std::vector<std::string> early = outer->remaining();
        if (!early.empty()) {
            return "'" + WithoutValue(early[0]) +
                   "' stands before the command; put options after it";
        }
    }
    return "too many arguments";
}

std::string AboutMismatch(const std::string& text) {
    constexpr std::string_view valueOfFlag = " was given a disallowed flag override";
    return text.ends_with(valueOfFlag)
               ? "--" + text.substr(0, text.size() - valueOfFlag.size()) + " takes no value"
               : text;
}

// Never repeats an argument that may be a pass phrase.
std::string Explanation(const Choice& choice, const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError)) {
        return AboutExtras(choice);
    }
    if (error.get_name() == "ArgumentMismatch") {
        return AboutMismatch(error.what());
    }
    if (choice.command->commands.empty() || error.get_name() != "RequiredError") {
        return error.what();
    }
    const std::vector<std::string> others = choice.app->remaining();
    return (others.empty() ? "a command is needed"
                           : "there is no command or option '" + WithoutValue(others[0]) + "'") +
           ": " + NamesOf(choice.command->commands);
}

}  // namespace

ParsedArguments Parse(const Command& program, std::vector<std::string> arguments) {
    CLI::App app(program.summary, program.name);
    app.set_version_flag("--version", program.name + " " DEVICEDISCOVER_VERSION,
                         "Print the version and exit")
        ->disable_flag_override();
    app.get_formatter()->column_width(kOptionColumns);
    AddTo(app, program, program.name);

    std::string output;
    std::string problem;
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        app.exit(asked, text, text);
        output = text.str();
    } catch (const CLI::ParseError& error) {
        problem = Explanation(Chosen(app, program), error);
    }
    const Choice choice = Chosen(app, program);
    return {choice.command, choice.words, output, problem};
}

}  // namespace App
