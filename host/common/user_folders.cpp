#include "host/common/user_folders.h"

#include "host/common/environment.h"

namespace Host {

namespace {

constexpr const char* kProductFolder = "DeviceDiscover";

// A relative path in such a variable would depend on where the program was started; it does not
// count.
std::filesystem::path AbsoluteFromEnvironment(const char* variable) {
    if (variable == nullptr) {
        return {};
    }
    std::filesystem::path path = PathFromEnvironment(variable);
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path Folder(const FolderRule& rule) {
    if (const auto folder = AbsoluteFromEnvironment(rule.variable); !folder.empty()) {
        return folder / kProductFolder;
    }
    if (const auto home = AbsoluteFromEnvironment(rule.homeVariable); !home.empty()) {
        return home / rule.belowHome / kProductFolder;
    }
    return {};
}

}  // namespace

std::filesystem::path UserStateFolder() {
    return Folder(kStateRule);
}

std::filesystem::path UserConfigurationFolder() {
    return Folder(kConfigurationRule);
}

std::string_view UserStateVariables() {
    return kStateRule.variables;
}

std::string_view UserConfigurationVariables() {
    return kConfigurationRule.variables;
}

}  // namespace Host
