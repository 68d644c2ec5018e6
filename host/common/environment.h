#pragma once

#include <filesystem>
#include <string_view>

namespace Host {

// The path in an environment variable; empty when the variable is not set or not to be trusted.
std::filesystem::path PathFromEnvironment(const char* name);

// Where the user's programs keep what they remember and how they are set up: the variable that says
// so, and the folder below the home folder that holds otherwise.
struct FolderRule {
    const char* variable;
    const char* homeVariable;  // null where there is no other place
    const char* belowHome;
    std::string_view variables;  // both, for people
};
extern const FolderRule kStateRule;
extern const FolderRule kConfigurationRule;

}  // namespace Host
