#include "host/PrinterUtil/module_loader.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace PrinterUtil {

const std::string_view kModuleSuffix = ".so";

namespace {

Dl_info ThisLibrary() {
    Dl_info info{};
    dladdr(&kModuleSuffix, &info);
    return info;
}

// What the file's header says against it: the system's own message can be misleading there.
std::string HeaderProblem(const std::filesystem::path& file) {
    ElfW(Ehdr) header{};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        return "not a library: ";
    }
    const auto* own = static_cast<const ElfW(Ehdr)*>(ThisLibrary().dli_fbase);
    const bool sameKind = header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
                          header.e_ident[EI_DATA] == own->e_ident[EI_DATA] &&
                          header.e_machine == own->e_machine;
    return sameKind ? "" : "built for another architecture: ";
}

// The system's message starts with the file that it is about: the module, or a library that the
// module needs.
std::string LoaderProblem(const std::filesystem::path& file) {
    const char* error = dlerror();
    const std::string message = error == nullptr ? "unknown error" : error;
    const std::string about = file.string() + ": ";
    if (message.starts_with(about)) {
        return HeaderProblem(file) + message.substr(about.size());
    }
    return "it needs another library: " + message;
}

}  // namespace

HINSTANCE LoadModule(const std::filesystem::path& file, std::string& problem) {
    // The code stays mapped after the last reference is gone: the process may end while threads of
    // the module run.
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr) {
        problem = LoaderProblem(file);
    }
    return static_cast<HINSTANCE>(module);
}

std::string WhyOthersMayChange(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::generic_category().message(errno);
    }
    if ((status.st_mode & S_IWOTH) != 0) {
        return "anyone may write to it";
    }
    if (status.st_uid != 0 && status.st_uid != geteuid()) {
        return "it belongs to another user, number " + std::to_string(status.st_uid);
    }
    return {};
}

std::filesystem::path LinkTarget(const std::filesystem::path& file) {
    std::error_code failure;
    if (!std::filesystem::is_symlink(file, failure)) {
        return {};
    }
    return std::filesystem::canonical(file, failure);
}

std::filesystem::path LibraryFolder() {
    const char* file = ThisLibrary().dli_fname;
    std::error_code failure;
    return std::filesystem::absolute(file == nullptr ? "" : file, failure).parent_path();
}

}  // namespace PrinterUtil
