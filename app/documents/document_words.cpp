// SPDX-License-Identifier: Apache-2.0

#include "app/documents/document_words.h"

namespace App {

namespace {

void Add(std::vector<DocumentedCommand>& all, std::vector<std::string> words, Command command) {
    words.push_back(command.name);
    if (words.size() == 1) {
        command.options.push_back({"--version", "", "Print the version and exit", {}});
    }
    command.options.push_back({"--help", "", "Print the help and exit", {}});
    all.push_back({words, command});
    for (const Command& inner : command.commands) {
        Add(all, words, inner);
    }
}

}  // namespace

std::vector<DocumentedCommand> DocumentedCommands(const Command& program) {
    std::vector<DocumentedCommand> all;
    Add(all, {}, program);
    return all;
}

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
    std::string joined;
    for (const std::string& word : words) {
        joined += (joined.empty() ? "" : between) + word;
    }
    return joined;
}

std::string WithBackslashes(const std::string& text, const std::string& characters) {
    std::string escaped;
    for (const char character : text) {
        if (characters.find(character) != std::string::npos) {
            escaped += '\\';
        }
        escaped += character;
    }
    return escaped;
}

std::string Title(const Command& command) {
    std::string title = command.summary;
    if (title.ends_with('.')) {
        title.pop_back();
    }
    return title;
}

}  // namespace App
