// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/module_loader.h"

#include <cstring>
#include <optional>

#include "host/PrinterUtil/modules/system_message_windows.h"
#include "platform/os_calls.h"

namespace PrinterUtil {

const std::string_view kModuleSuffix = ".dll";

namespace {

// The part of a library's file that may contain its headers.
constexpr std::size_t kLargestHeader = std::size_t{64} * 1024;

WORD MachineOfThisProcess() {
    const auto* image = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    return reinterpret_cast<const IMAGE_NT_HEADERS*>(image + dos->e_lfanew)->FileHeader.Machine;
}

// The processor for which the library was built; nothing when it is not a library.
std::optional<WORD> MachineOf(const TrustedFile& file) {
    IMAGE_DOS_HEADER dos{};
    struct {
        DWORD signature;
        IMAGE_FILE_HEADER header;
    } image{};
    std::string bytes;
    if (!file.Read(bytes, kLargestHeader).empty() || bytes.size() < sizeof dos) {
        return std::nullopt;
    }
    std::memcpy(&dos, bytes.data(), sizeof dos);
    const auto start = static_cast<std::size_t>(dos.e_lfanew);
    if (dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew < 0 ||
        start + sizeof image > bytes.size()) {
        return std::nullopt;
    }
    std::memcpy(&image, bytes.data() + start, sizeof image);
    return image.signature == IMAGE_NT_SIGNATURE ? std::optional(image.header.Machine)
                                                 : std::nullopt;
}

std::string LoaderProblem(DWORD error) {
    const bool unreadable = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    const char* hint = error == ERROR_BAD_EXE_FORMAT  ? "not a library: "
                       : error == ERROR_MOD_NOT_FOUND ? "it needs another library: "
                       : unreadable                   ? "cannot be read: "
                                                      : "";
    return hint + SystemMessage(error);
}

// Suppresses the system's dialogue about a module that cannot be loaded.
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

}  // namespace

HINSTANCE LoadModule(const TrustedFile& file, std::string& problem) {
    // Check first, because not every system refuses such a module.
    const std::optional<WORD> machine = MachineOf(file);
    if (machine && *machine != MachineOfThisProcess()) {
        problem = "built for another architecture: machine " + std::to_string(*machine) +
                  " instead of " + std::to_string(MachineOfThisProcess());
        return nullptr;
    }
    const QuietErrors quiet;
    const HINSTANCE module =
        LoadLibraryExW(file.Path().c_str(), nullptr,
                       LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (module == nullptr) {
        problem = LoaderProblem(GetLastError());
        return nullptr;
    }
    // The code stays mapped after the last reference is released: threads of the module may run.
    KeepLoaded(module);
    return module;
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
