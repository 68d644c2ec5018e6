#include "host/PrinterUtil/system_message_windows.h"
#include "host/PrinterUtil/trusted_file.h"
#include "host/common/paths.h"
#include "platform/os.h"

// After the system's own header, which they need.
#include <aclapi.h>
#include <sddl.h>

#include <array>
#include <utility>

namespace PrinterUtil {

namespace fs = std::filesystem;

namespace {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const { CloseHandle(file); }
};
using File = std::unique_ptr<HANDLE, CloseFile>;

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};

// Opens a file or folder, behind all links, which nobody can replace while it is open.
File Open(const fs::path& path, DWORD access, DWORD share) {
    const HANDLE file = CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

File OpenFolder(const fs::path& folder) {
    return Open(folder, READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE);
}

// The groups to which everybody belongs, or everybody who can log on.
bool IsEverybody(PSID user) {
    constexpr std::array everybody{WinWorldSid, WinAuthenticatedUserSid, WinBuiltinUsersSid,
                                   WinInteractiveSid, WinAnonymousSid};
    for (const WELL_KNOWN_SID_TYPE group : everybody) {
        if (IsWellKnownSid(user, group) != 0) {
            return true;
        }
    }
    return false;
}

bool LetsEverybodyWrite(const ACE_HEADER* header, DWORD writing) {
    if (header->AceType != ACCESS_ALLOWED_ACE_TYPE || (header->AceFlags & INHERIT_ONLY_ACE) != 0) {
        return false;
    }
    const auto* entry = reinterpret_cast<const ACCESS_ALLOWED_ACE*>(header);
    return (entry->Mask & writing) != 0 && IsEverybody(const_cast<DWORD*>(&entry->SidStart));
}

bool LetsEverybodyWrite(PACL list, DWORD writing) {
    if (list == nullptr) {
        return true;
    }
    for (DWORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        if (GetAce(list, index, &entry) == 0 ||
            LetsEverybodyWrite(static_cast<const ACE_HEADER*>(entry), writing)) {
            return true;
        }
    }
    return false;
}

// The rights that change a file, or what a folder's names stand for.
DWORD WritingRights(HANDLE file) {
    constexpr DWORD either =
        GENERIC_WRITE | GENERIC_ALL | WRITE_DAC | WRITE_OWNER | FILE_WRITE_DATA;
    BY_HANDLE_FILE_INFORMATION information{};
    GetFileInformationByHandle(file, &information);
    const bool folder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return either | (folder ? FILE_DELETE_CHILD : FILE_APPEND_DATA);
}

std::filesystem::path FinalPath(HANDLE file) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()), 0);
    if (length > path.size()) {
        path.resize(length);
        length = GetFinalPathNameByHandleW(file, path.data(), length, 0);
    }
    path.resize(length);
    return path;
}

// Why a file or folder cannot be trusted; empty when only its user and the administrator can change
// it.
std::string WhyOthersMayChange(HANDLE file) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                        nullptr, &list, nullptr, &descriptor);
    const std::unique_ptr<void, FreeLocal> owned(descriptor);
    if (error != ERROR_SUCCESS) {
        return SystemMessage(error);
    }
    return LetsEverybodyWrite(list, WritingRights(file)) ? "anyone may write to it" : "";
}

std::string FolderProblem(const fs::path& folder, File& opened) {
    opened = OpenFolder(folder);
    const std::string reason =
        opened ? WhyOthersMayChange(opened.get()) : SystemMessage(GetLastError());
    return reason.empty() ? reason
                          : "refused: its folder " + Host::PathToUtf8(folder) + ": " + reason;
}

bool IsLink(const fs::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
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
    File folder;
    File linkedFolder;  // where the file is when the path is a link

    // Opens all for as long as this lives; why they are not to be trusted.
    std::string OpenAll(const fs::path& path);
};

// The file stays open for reading while it is judged and loaded: nobody can write to it, remove it,
// or rename one of its folders meanwhile.
std::string TrustedFile::Handle::OpenAll(const fs::path& path) {
    file = PrinterUtil::Open(path, GENERIC_READ, FILE_SHARE_READ);
    if (!file) {
        return "cannot be read: " + SystemMessage(GetLastError());
    }
    if (const std::string reason = WhyOthersMayChange(file.get()); !reason.empty()) {
        return "refused: " + reason;
    }
    if (std::string reason = FolderProblem(path.parent_path(), folder); !reason.empty()) {
        return reason;
    }
    return IsLink(path) ? FolderProblem(FinalPath(file.get()).parent_path(), linkedFolder)
                        : std::string();
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
    return {file, {}, handle};
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
