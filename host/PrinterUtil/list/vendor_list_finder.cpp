// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/list/vendor_list_finder.h"

#include <system_error>

#include "base/environment.h"
#include "host/PrinterUtil/modules/module_loader.h"
#include "host/PrinterUtil/modules/trusted_file.h"
#include "host/common/paths.h"
#include "host/common/user_folders.h"

namespace PrinterUtil {

namespace {

namespace fs = std::filesystem;

constexpr const char* kVariable = "DEVICEDISCOVER_VENDORS";
constexpr const char* kProductFolder = "DeviceDiscover";
constexpr const char* kFileName = "vendors.json";
constexpr std::size_t kLargestList = std::size_t{1024} * 1024;

bool IsThere(const fs::path& path) {
    std::error_code failure;
    return fs::status(path, failure).type() != fs::file_type::not_found;
}

std::string Read(const fs::path& path, std::string& text) {
    const TrustedFile file = TrustedFile::Open(path);
    if (!file.Problem().empty()) {
        return file.Problem();
    }
    std::string problem = file.Read(text, kLargestList + 1);
    if (text.size() > kLargestList) {
        problem = "the file has more than " + std::to_string(kLargestList) + " bytes";
    }
    return problem;
}

FoundList ReadAt(const fs::path& path) {
    FoundList found;
    found.path = Host::AbsolutePath(path);
    const std::string problem = Read(found.path, found.text);
    if (!problem.empty()) {
        found.problem = "vendor list " + Host::PathToUtf8(found.path) + ": " + problem;
    }
    return found;
}

// The name of the user's list, for display.
std::string UsersList(const Host::UserFolder& folder) {
    return folder.path.empty() ? "the user's (there is no folder for it: " + folder.reason + ")"
                               : Host::PathToUtf8(folder.path / kFileName);
}

// The user's list, or the one beside this library.
FoundList FindUnnamedList(const Host::UserFolder& users) {
    const fs::path beside = LibraryFolder() / kProductFolder;
    for (const fs::path& folder : {users.path, beside}) {
        if (!folder.empty() && IsThere(folder / kFileName)) {
            return ReadAt(folder / kFileName);
        }
    }
    FoundList none;
    none.problem = "vendor list: none found, neither " + UsersList(users) + " nor " +
                   Host::PathToUtf8(beside / kFileName);
    return none;
}

}  // namespace

FoundList FindVendorList(const fs::path& chosen) {
    if (!chosen.empty()) {
        return ReadAt(chosen);
    }
    const Base::EnvironmentText named = Base::ReadEnvironment(kVariable);
    if (!named.text.empty()) {
        return ReadAt(named.text);
    }
    const Host::UserFolder users = Host::UserConfigurationFolder();
    FoundList found = FindUnnamedList(users);
    if (!named.ignored.empty()) {
        found.note = "vendor list: " + named.ignored;
    } else if (!users.ignored.empty()) {
        found.note = "vendor list: " + users.ignored;
    } else if (found.path.empty()) {
        found.problem += std::string("; ") + kVariable + " can name one";
    }
    return found;
}

}  // namespace PrinterUtil
