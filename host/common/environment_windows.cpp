#include <string>

#include "host/common/environment.h"
#include "host/common/utf8.h"
#include "platform/os.h"

namespace Host {

const FolderRule kStateRule{"LOCALAPPDATA", nullptr, "", "LOCALAPPDATA"};
const FolderRule kConfigurationRule{"APPDATA", nullptr, "", "APPDATA"};

std::filesystem::path PathFromEnvironment(const char* name) {
    const std::wstring wideName = FromUtf8(name);
    std::wstring value(MAX_PATH, L'\0');
    DWORD length =
        GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
    while (length > value.size()) {
        value.resize(length);
        length = GetEnvironmentVariableW(wideName.c_str(), value.data(), length);
    }
    value.resize(length);
    return value;
}

}  // namespace Host
