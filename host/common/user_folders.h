// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

namespace Host {

// One of the product's folders of this user. The folder may not exist yet.
struct UserFolder {
    std::filesystem::path path;  // empty when the user has none
    // Why the user has none, for display: "XDG_STATE_HOME and HOME unset".
    std::string reason;
    // What was ignored, for the log; empty when nothing was.
    std::string ignored;
};

// The folders of the log and of the user's vendor list. Variables that base/environment.h ignores
// have no effect.
UserFolder UserStateFolder();
UserFolder UserConfigurationFolder();

}  // namespace Host
