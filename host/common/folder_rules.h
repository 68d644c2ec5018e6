#pragma once

#include <filesystem>
#include <string_view>

namespace Host {

// Where the user's programs keep what they remember and how they are set up: the variable that says
// so, and the folder below the home folder that holds otherwise.
struct FolderRule {
    const char* variable;
    const char* homeVariable;  // null where there is no other place
    const char* belowHome;
    std::string_view variables;  // both, for people
    // Where the system itself knows the folder of a user whose environment does not count; else
    // null.
    std::filesystem::path (*withoutEnvironment)();
};
extern const FolderRule kStateRule;
extern const FolderRule kConfigurationRule;

}  // namespace Host
