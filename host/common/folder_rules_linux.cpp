// SPDX-License-Identifier: Apache-2.0

#include "host/common/folder_rules.h"

namespace Host {

const FolderRule kStateRule{"XDG_STATE_HOME", "HOME", ".local/state", "XDG_STATE_HOME and HOME",
                            nullptr};
const FolderRule kConfigurationRule{"XDG_CONFIG_HOME", "HOME", ".config",
                                    "XDG_CONFIG_HOME and HOME", nullptr};

}  // namespace Host
