// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string_view>

namespace Host {

// How to find the user's folder for state or for configuration: the environment variable that names
// it, and the default below the home folder.
struct FolderRule {
    const char* variable;
    const char* homeVariable;  // null when there is no default
    const char* belowHome;
    std::string_view variables;  // both, for people
    // Asks the system for the folder when the environment must be ignored; null if the system does
    // not know it.
    std::filesystem::path (*withoutEnvironment)();
};
extern const FolderRule kStateRule;
extern const FolderRule kConfigurationRule;

}  // namespace Host
