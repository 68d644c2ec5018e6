// SPDX-License-Identifier: Apache-2.0

#include "host/common/user_folders.h"

#include "base/environment.h"
#include "host/common/folder_rules.h"

namespace Host {

namespace {

constexpr const char* kProductFolder = "DeviceDiscover";

// A relative path in such a variable is ignored: it would depend on the folder where the program
// was started.
std::filesystem::path AbsoluteFromEnvironment(const char* variable, bool& isIgnored) {
    if (variable == nullptr) {
        return {};
    }
    const Base::EnvironmentText value = Base::ReadEnvironment(variable);
    isIgnored = isIgnored || !value.ignored.empty();
    const std::filesystem::path path = value.text;
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path FolderBy(const FolderRule& rule, bool& isIgnored) {
    if (auto folder = AbsoluteFromEnvironment(rule.variable, isIgnored); !folder.empty()) {
        return folder;
    }
    if (const auto home = AbsoluteFromEnvironment(rule.homeVariable, isIgnored); !home.empty()) {
        return home / rule.belowHome;
    }
    return isIgnored && rule.withoutEnvironment != nullptr ? rule.withoutEnvironment()
                                                           : std::filesystem::path();
}

UserFolder Folder(const FolderRule& rule) {
    bool isIgnored = false;
    const std::filesystem::path folder = FolderBy(rule, isIgnored);
    const std::string variables(rule.variables);
    const std::string ignored =
        isIgnored
            ? variables + " ignored: this program has more rights than the user who started it"
            : "";
    if (!folder.empty()) {
        return {folder / kProductFolder, {}, ignored};
    }
    return {{}, isIgnored ? ignored : variables + " unset", ignored};
}

}  // namespace

UserFolder UserStateFolder() {
    return Folder(kStateRule);
}

UserFolder UserConfigurationFolder() {
    return Folder(kConfigurationRule);
}

}  // namespace Host
