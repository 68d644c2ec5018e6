#pragma once

#include <filesystem>
#include <string_view>

namespace Host {

// The product's own folders among the user's; empty where the user has none. Neither is made.
std::filesystem::path UserStateFolder();
std::filesystem::path UserConfigurationFolder();

// Where the system keeps such folders, for a message that says why there is none.
std::string_view UserStateVariables();

}  // namespace Host
