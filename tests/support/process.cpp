// SPDX-License-Identifier: Apache-2.0

#include "tests/support/process.h"

#include <filesystem>
#include <fstream>

#include "tests/support/process_system.h"

namespace Process {

std::string OwnFolder() {
    return std::filesystem::path(OwnFile()).parent_path().string() +
           static_cast<char>(std::filesystem::path::preferred_separator);
}

std::vector<std::string> OwnLauncher() {
    return LinesOf(OwnFile() + ".launcher");
}

std::string FreshFile(const std::string& purpose) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("devicediscover-" + std::to_string(OwnId()) + '-' + purpose);
    std::filesystem::remove(path);
    return path.string();
}

std::vector<std::string> LinesOf(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

}  // namespace Process
