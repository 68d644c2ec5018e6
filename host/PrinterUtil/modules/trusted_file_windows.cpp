// SPDX-License-Identifier: Apache-2.0

#include "base/text/utf8.h"
#include "host/PrinterUtil/modules/local_memory_windows.h"
#include "host/PrinterUtil/modules/system_message_windows.h"
#include "host/PrinterUtil/modules/trusted_file.h"
#include "host/PrinterUtil/modules/vouched_folders_windows.h"
#include "host/PrinterUtil/modules/write_access_windows.h"
#include "platform/os.h"

// After the system's own header, which it needs.
#include <aclapi.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace PrinterUtil {

namespace fs = std::filesystem;

namespace {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const { CloseHandle(file); }
};
using File = std::unique_ptr<HANDLE, CloseFile>;

// Opens a file or folder, following all links.
File Open(const fs::path& path, DWORD access, DWORD share) {
    const HANDLE file = CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

// Opens a folder, which nobody can rename or remove while it is open. The system holds it only for
// one who may list it; where this process may not, it is open to be judged.
File OpenDirectory(const fs::path& path) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
    File folder = Open(path, FILE_LIST_DIRECTORY | READ_CONTROL, share);
    if (!folder && GetLastError() == ERROR_ACCESS_DENIED) {
        folder = Open(path, READ_CONTROL, share);
    }
    return folder;
}

// Where a file is, behind all links: a path that starts with "\\?\"; empty where the system does
// not know.
std::wstring FinalPath(HANDLE file) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()), 0);
    if (length > path.size()) {
        path.resize(length);
        length = GetFinalPathNameByHandleW(file, path.data(), length, 0);
    }
    path.resize(length);
    return path;
}

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kPrefixOfShares = L"\\\\?\\UNC\\";

// How people write a final path.
std::wstring Plain(const std::wstring& path) {
    return path.starts_with(kPrefixOfShares)
               ? L"\\\\" + path.substr(kPrefixOfShares.size())
               : path.substr(path.starts_with(kPrefix) ? kPrefix.size() : 0);
}

// How much of a final path is the root of its volume or share, which ends with a separator.
std::size_t RootLength(const std::wstring& path) {
    const bool isShared = path.starts_with(kPrefixOfShares);
    std::size_t at = isShared ? kPrefixOfShares.size() : kPrefix.size();
    for (int names = isShared ? 2 : 1; names > 0 && at != std::wstring::npos; --names) {
        at = path.find(L'\\', at);
        at += at == std::wstring::npos ? 0 : 1;
    }
    return at == std::wstring::npos ? path.size() : at;
}

// The folder of a file or folder that is not the root.
std::wstring Parent(const std::wstring& path, std::size_t rootLength) {
    return path.substr(0, std::max(path.rfind(L'\\'), rootLength));
}

std::string WhyNotTrusted(HANDLE file, PathPart part) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(file, SE_FILE_OBJECT,
                                        OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                                        nullptr, nullptr, nullptr, nullptr, &descriptor);
    const LocalMemory owned(descriptor);
    return error == ERROR_SUCCESS ? WhyOthersMayChange(descriptor, part) : SystemMessage(error);
}

std::string TypeProblem(const fs::path& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (status.type() == fs::file_type::not_found) {
        return "there is no such file";
    }
    if (failure) {
        return failure.message();
    }
    return status.type() == fs::file_type::regular ? "" : "not a regular file";
}

}  // namespace

struct TrustedFile::Handle {
    File file;
    std::vector<File> folders;  // from the file's own to the root
    std::wstring path;          // behind all links

    // Opens all for as long as this lives; why they are not to be trusted.
    std::string OpenAll(const fs::path& named);
    std::string OpenFolders();
    std::string OpenFolder(const std::wstring& folder);
};

// The file stays open for reading while it is judged and loaded: nobody can write to it, remove it,
// or rename one of its folders meanwhile.
std::string TrustedFile::Handle::OpenAll(const fs::path& named) {
    file = PrinterUtil::Open(named, GENERIC_READ, FILE_SHARE_READ);
    if (!file) {
        return "cannot be read: " + SystemMessage(GetLastError());
    }
    if (const std::string reason = WhyNotTrusted(file.get(), PathPart::kFile); !reason.empty()) {
        return "refused: " + reason;
    }
    path = FinalPath(file.get());
    if (!path.starts_with(kPrefix)) {
        return "refused: the system does not know its folders: " + SystemMessage(GetLastError());
    }
    return OpenFolders();
}

// Up to the root, or to a folder that the administrator answers for.
std::string TrustedFile::Handle::OpenFolders() {
    const std::size_t root = RootLength(path);
    std::wstring folder = path;
    std::string reason;
    while (reason.empty() && folder.size() > root) {
        folder = Parent(folder, root);
        if (IsVouchedFor(Plain(folder))) {
            break;
        }
        reason = OpenFolder(folder);
    }
    return reason;
}

std::string TrustedFile::Handle::OpenFolder(const std::wstring& folder) {
    const PathPart part = folders.empty() ? PathPart::kFileFolder : PathPart::kFolderAbove;
    folders.push_back(OpenDirectory(folder));
    const std::string reason =
        folders.back() ? WhyNotTrusted(folders.back().get(), part) : SystemMessage(GetLastError());
    return reason.empty() ? reason
                          : "refused: its folder " + Base::ToUtf8(Plain(folder)) + ": " + reason;
}

TrustedFile::TrustedFile(fs::path place, std::string reason, std::shared_ptr<Handle> opened)
    : path(std::move(place)), problem(std::move(reason)), handle(std::move(opened)) {}

TrustedFile TrustedFile::Open(const fs::path& file) {
    if (std::string reason = TypeProblem(file); !reason.empty()) {
        return {{}, reason, nullptr};
    }
    auto handle = std::make_shared<Handle>();
    const std::string reason = handle->OpenAll(file);
    if (!reason.empty()) {
        return {{}, reason, nullptr};
    }
    // A path without links stands for the same file from then on.
    return {Plain(handle->path), {}, handle};
}

std::string TrustedFile::Read(std::string& bytes, std::size_t most) const {
    bytes.resize(most);
    DWORD length = 0;
    const LARGE_INTEGER start{};
    const bool isRead =
        SetFilePointerEx(handle->file.get(), start, nullptr, FILE_BEGIN) != 0 &&
        ReadFile(handle->file.get(), bytes.data(), static_cast<DWORD>(most), &length, nullptr) != 0;
    const DWORD error = GetLastError();
    bytes.resize(isRead ? length : 0);
    return isRead ? std::string() : "cannot be read: " + SystemMessage(error);
}

}  // namespace PrinterUtil
