// SPDX-License-Identifier: Apache-2.0

#include "app/documents/completions.h"

namespace App {

namespace {

constexpr const char* kBashBegin = R"(# SPDX-License-Identifier: Apache-2.0
# Completion of devicediscover for bash.

_devicediscover() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=devicediscover index
    # bash makes three words of --option=value.
    if [ "$current" = = ]; then
        current=
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((index = 1; index < COMP_CWORD; index++)); do
        case "$command ${COMP_WORDS[index]}" in
)";

constexpr const char* kBashValues = R"(            command="$command ${COMP_WORDS[index]}"
            ;;
        esac
    done

    local words=
    case "$command $previous" in
)";

constexpr const char* kBashWords = R"(    *)
        case $command in
)";

constexpr const char* kBashEnd = R"(        esac
        ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -F _devicediscover devicediscover
)";

std::string ValueCase(const std::string& name, const Option& option) {
    const std::string begin = "    '" + name + " " + option.name + "')\n";
    if (option.valueName == "FILE") {
        return begin +
               "        compopt -o filenames\n"
               "        COMPREPLY=($(compgen -f -- \"$current\"))\n"
               "        return\n        ;;\n";
    }
    return begin + "        words='" + Joined(option.choices, " ") + "'\n        ;;\n";
}

std::string WordsCase(const std::string& name, const Command& command) {
    std::vector<std::string> words;
    for (const Command& inner : command.commands) {
        words.push_back(inner.name);
    }
    for (const Option& option : command.options) {
        if (!option.IsArgument()) {
            words.push_back(option.name);
        }
    }
    return "        '" + name + "') words='" + Joined(words, " ") + "' ;;\n";
}

}  // namespace

std::string BashCompletion(const std::vector<DocumentedCommand>& commands) {
    std::string names;
    std::string values;
    std::string words;
    for (const auto& [path, command] : commands) {
        const std::string name = Joined(path, " ");
        if (path.size() > 1) {
            names += (names.empty() ? "        '" : " | \\\n            '") + name + "'";
        }
        for (const Option& option : command.options) {
            // A value that may be left out is followed by options as well.
            if (!option.IsArgument() && !option.IsFlag() && !option.isValueOptional) {
                values += ValueCase(name, option);
            }
        }
        words += WordsCase(name, command);
    }
    return kBashBegin + names + ")\n" + kBashValues + values + kBashWords + words + kBashEnd;
}

}  // namespace App
