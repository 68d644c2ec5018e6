// SPDX-License-Identifier: Apache-2.0

#include "host/common/folder_rules.h"
#include "platform/os.h"

// Needs windows.h before it.
#include <shlobj.h>

namespace Host {

namespace {

// An elevated program keeps its log in the folder of the user whose rights it has.
std::filesystem::path LocalFolder() {
    PWSTR text = nullptr;
    const bool isKnown =
        SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_DEFAULT, nullptr, &text) == S_OK;
    std::filesystem::path folder = isKnown ? std::filesystem::path(text) : std::filesystem::path();
    CoTaskMemFree(text);
    return folder;
}

}  // namespace

const FolderRule kStateRule{"LOCALAPPDATA", nullptr, "", "LOCALAPPDATA", LocalFolder};
const FolderRule kConfigurationRule{"APPDATA", nullptr, "", "APPDATA", nullptr};

}  // namespace Host
