#pragma once

#include <filesystem>
#include <string_view>

namespace Host {

// The product's own folders among the user's; empty where the user has none. Neither is made.
std::filesystem::path UserStateFolder();
std::filesystem::path UserConfigurationFolder();

// The variables that name them, for a message that says why there is none.
std::string_view UserStateVariables();
std::string_view UserConfigurationVariables();

}  // namespace Host
