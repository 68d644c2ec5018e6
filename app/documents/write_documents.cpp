// SPDX-License-Identifier: Apache-2.0

// Writes the manual pages and the shells' completions from the tree of commands; runs while the
// program is built. Arguments: the folder to write into, the version, the date of the pages.

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "app/commands/commands.h"
#include "app/documents/completions.h"
#include "app/documents/man_page.h"

namespace {

bool Write(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        std::fprintf(stderr, "cannot write %s\n", file.string().c_str());
    }
    return static_cast<bool>(stream);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: write_documents FOLDER VERSION DATE\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    App::Settings settings;
    const auto commands = App::DocumentedCommands(App::ProgramCommand(settings));
    bool isWritten = Write(folder / "bash" / "devicediscover", App::BashCompletion(commands)) &&
                     Write(folder / "zsh" / "_devicediscover", App::ZshCompletion(commands)) &&
                     Write(folder / "fish" / "devicediscover.fish", App::FishCompletion(commands));
    for (const App::DocumentedCommand& command : commands) {
        isWritten = isWritten && Write(folder / "man1" / (App::Joined(command.words, "-") + ".1"),
                                       App::ManPage(command, argv[2], argv[3]));
    }
    return isWritten ? 0 : 3;
}
