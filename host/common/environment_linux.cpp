#include <stdlib.h>

#include "host/common/environment.h"

namespace Host {

const FolderRule kStateRule{"XDG_STATE_HOME", "HOME", ".local/state", "XDG_STATE_HOME and HOME"};
const FolderRule kConfigurationRule{"XDG_CONFIG_HOME", "HOME", ".config",
                                    "XDG_CONFIG_HOME and HOME"};

std::filesystem::path PathFromEnvironment(const char* name) {
    // Who starts a program that has more rights than he has must not say where it loads code from.
    const char* value = secure_getenv(name);
    return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

}  // namespace Host
