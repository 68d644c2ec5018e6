// SPDX-License-Identifier: Apache-2.0

#include <filesystem>
#include <fstream>

#include "app/program/log_file.h"

namespace App {

std::string PrepareLogFile(const std::string& file) {
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    return std::ofstream(path, std::ios::app) ? "" : "the system does not open it for writing";
}

}  // namespace App
