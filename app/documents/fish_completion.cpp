// SPDX-License-Identifier: Apache-2.0

#include "app/commands/help_text.h"
#include "app/documents/completions.h"

namespace App {

namespace {

constexpr const char* kFishBegin = R"(# SPDX-License-Identifier: Apache-2.0
# Completion of devicediscover for fish.

# Whether the command that is typed so far is this one: "usb list", "" for none yet.
function __devicediscover_is
    set -l command
    for word in (commandline -opc)[2..-1]
        if contains -- (string trim "$command $word") $__devicediscover_commands
            set command (string trim "$command $word")
        end
    end
    test "$command" = "$argv[1]"
end

)";

std::string FishQuoted(const std::string& text) {
    return "'" + WithBackslashes(text, "\\'") + "'";
}

std::string Line(const std::string& name, const std::string& what, const std::string& text) {
    return "complete -c devicediscover -n \"__devicediscover_is '" + name + "'\" " + what + " -d " +
           FishQuoted(text) + "\n";
}

std::string OptionLine(const std::string& name, const Option& option) {
    std::string what = "-l " + option.name.substr(2);
    if (option.valueName == "FILE") {
        what += " -r -F";
    } else {
        what += option.IsFlag() || option.isValueOptional ? " -f" : " -x";
    }
    if (!option.choices.empty()) {
        what += " -a " + FishQuoted(Joined(option.choices, " "));
    }
    return Line(name, what, Wrapped(OptionText(option), 1000));
}

}  // namespace

std::string FishCompletion(const std::vector<DocumentedCommand>& commands) {
    std::string names;
    std::string lines;
    for (const auto& [path, command] : commands) {
        const std::string name = Joined({path.begin() + 1, path.end()}, " ");
        names += name.empty() ? "" : " " + FishQuoted(name);
        for (const Command& inner : command.commands) {
            lines += Line(name, "-f -a " + inner.name, Title(inner));
        }
        for (const Option& option : command.options) {
            lines += option.IsArgument() ? "" : OptionLine(name, option);
        }
    }
    return kFishBegin + std::string("set -g __devicediscover_commands") + names + "\n\n" + lines;
}

}  // namespace App
