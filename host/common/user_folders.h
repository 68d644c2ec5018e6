#pragma once

#include <filesystem>
#include <string>

namespace Host {

// One of the product's own folders among the user's, which may not be there yet.
struct UserFolder {
    std::filesystem::path path;  // empty where the user has none
    // Why there is none, for people: "XDG_STATE_HOME and HOME unset".
    std::string reason;
    // What did not count, for the log; empty when all did.
    std::string ignored;
};

// Where the log is, and where the user's vendor list is. An environment that does not count (see
// base/environment.h) chooses neither.
UserFolder UserStateFolder();
UserFolder UserConfigurationFolder();

}  // namespace Host
