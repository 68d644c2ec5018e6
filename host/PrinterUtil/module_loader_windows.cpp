#include "host/PrinterUtil/module_loader.h"

#include <aclapi.h>
#include <sddl.h>

#include <array>
#include <fstream>
#include <memory>
#include <optional>

#include "host/common/utf8.h"
#include "platform/os_calls.h"

namespace PrinterUtil {

const std::string_view kModuleSuffix = ".dll";

namespace {

struct CloseFile {
    using pointer = HANDLE;
    void operator()(HANDLE file) const { CloseHandle(file); }
};
using File = std::unique_ptr<HANDLE, CloseFile>;

struct FreeLocal {
    void operator()(void* memory) const { LocalFree(memory); }
};

// Opens a file or folder, behind all links, to ask about it.
File OpenToAsk(const std::filesystem::path& path, DWORD flags = 0) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(path.c_str(), READ_CONTROL, share, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
    return File(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

std::string SystemMessage(DWORD error) {
    std::array<wchar_t, 512> text{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string message = Host::ToUtf8(std::wstring_view(text.data(), length));
    message.erase(message.find_last_not_of(" \r\n.") + 1);
    return message + " (error " + std::to_string(error) + ")";
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

WORD MachineOfThisProcess() {
    const auto* image = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    return reinterpret_cast<const IMAGE_NT_HEADERS*>(image + dos->e_lfanew)->FileHeader.Machine;
}

// The processor that the library was built for; none when it is no library.
std::optional<WORD> MachineOf(const std::filesystem::path& path) {
    IMAGE_DOS_HEADER dos{};
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(&dos), sizeof dos);
    struct {
        DWORD signature;
        IMAGE_FILE_HEADER header;
    } image{};
    file.seekg(dos.e_lfanew);
    file.read(reinterpret_cast<char*>(&image), sizeof image);
    if (!file || dos.e_magic != IMAGE_DOS_SIGNATURE || image.signature != IMAGE_NT_SIGNATURE) {
        return std::nullopt;
    }
    return image.header.Machine;
}

std::string LoaderProblem(DWORD error) {
    const bool unreadable = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    const char* hint = error == ERROR_BAD_EXE_FORMAT  ? "not a library: "
                       : error == ERROR_MOD_NOT_FOUND ? "it needs another library: "
                       : unreadable                   ? "cannot be read: "
                                                      : "";
    return hint + SystemMessage(error);
}

// Keeps the system from asking the user about a module that cannot be loaded.
class QuietErrors {
public:
    QuietErrors() {
        SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previous);
    }
    ~QuietErrors() { SetThreadErrorMode(previous, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    DWORD previous = 0;
};

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

}  // namespace

HINSTANCE LoadModule(const std::filesystem::path& file, std::string& problem) {
    // Asked before the system is: not every one refuses it.
    const std::optional<WORD> machine = MachineOf(file);
    if (machine && *machine != MachineOfThisProcess()) {
        problem = "built for another architecture: machine " + std::to_string(*machine) +
                  " instead of " + std::to_string(MachineOfThisProcess());
        return nullptr;
    }
    const QuietErrors quiet;
    const HINSTANCE module = LoadLibraryExW(
        file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (module == nullptr) {
        problem = LoaderProblem(GetLastError());
        return nullptr;
    }
    // The code stays mapped after the last reference is gone: threads of the module may run.
    KeepLoaded(module);
    return module;
}

std::string WhyOthersMayChange(const std::filesystem::path& path) {
    const File file = OpenToAsk(path);
    if (!file) {
        return SystemMessage(GetLastError());
    }
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD error = GetSecurityInfo(file.get(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                        nullptr, nullptr, &list, nullptr, &descriptor);
    const std::unique_ptr<void, FreeLocal> owned(descriptor);
    if (error != ERROR_SUCCESS) {
        return SystemMessage(error);
    }
    return LetsEverybodyWrite(list, WritingRights(file.get())) ? "anyone may write to it" : "";
}

std::filesystem::path LinkTarget(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return {};
    }
    const File file = OpenToAsk(path);
    return file ? FinalPath(file.get()) : std::filesystem::path();
}

std::filesystem::path LibraryFolder() {
    HMODULE library = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&kModuleSuffix), &library);
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(library, path.data(), static_cast<DWORD>(path.size()))) ==
           path.size()) {
        path.resize(2 * path.size());
    }
    path.resize(length);
    return std::filesystem::path(path).parent_path();
}

}  // namespace PrinterUtil
