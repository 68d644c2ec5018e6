// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterUtil/modules/module_loader.h"

#include <dlfcn.h>
#include <link.h>

#include <cstring>
#include <system_error>

namespace PrinterUtil {

const std::string_view kModuleSuffix = ".so";

namespace {

Dl_info ThisLibrary() {
    Dl_info info{};
    dladdr(&kModuleSuffix, &info);
    return info;
}

bool IsForThisProcessor(const ElfW(Ehdr) & header) {
    const auto* own = static_cast<const ElfW(Ehdr)*>(ThisLibrary().dli_fbase);
    return header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == own->e_ident[EI_DATA] && header.e_machine == own->e_machine;
}

// Explains why the module itself cannot be loaded. Checks its header first, because the system's
// message can be misleading.
std::string ModuleProblem(const TrustedFile& file, const std::string& message) {
    ElfW(Ehdr) header{};
    std::string bytes;
    if (std::string problem = file.Read(bytes, sizeof header); !problem.empty()) {
        return problem;
    }
    std::memcpy(&header, bytes.data(), bytes.size());
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        return "not a library: " + message;
    }
    return (IsForThisProcessor(header) ? "" : "built for another architecture: ") + message;
}

// Explains the system's message, which starts with the file concerned: the module, or a library
// that it needs.
std::string LoaderProblem(const TrustedFile& file) {
    const char* error = dlerror();
    const std::string message = error == nullptr ? "unknown error" : error;
    const std::string about = file.Path().string() + ": ";
    return message.starts_with(about) ? ModuleProblem(file, message.substr(about.size()))
                                      : "it needs another library: " + message;
}

}  // namespace

HINSTANCE LoadModule(const TrustedFile& file, std::string& problem) {
    // Load by path, so that the module keeps its name and finds its neighbours; no other user can
    // replace the file at that path. The code stays mapped after the last reference is released:
    // the process may end while threads of the module run.
    void* module = dlopen(file.Path().c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr) {
        problem = LoaderProblem(file);
    }
    return static_cast<HINSTANCE>(module);
}

std::filesystem::path LibraryFolder() {
    const char* file = ThisLibrary().dli_fname;
    std::error_code failure;
    return std::filesystem::absolute(file == nullptr ? "" : file, failure).parent_path();
}

}  // namespace PrinterUtil
