#include "host/PrinterUtil/module_loader.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

// Reads the file's header, as far as it has one; the system's error number when that fails.
int ReadHeader(const std::filesystem::path& file, ElfW(Ehdr) & header) {
    const int opened = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int error = opened < 0 || read(opened, &header, sizeof header) < 0 ? errno : 0;
    if (opened >= 0) {
        close(opened);
    }
    return error;
}

bool IsForThisProcessor(const ElfW(Ehdr) & header) {
    const auto* own = static_cast<const ElfW(Ehdr)*>(ThisLibrary().dli_fbase);
    return header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == own->e_ident[EI_DATA] && header.e_machine == own->e_machine;
}

// What is wrong with the module itself. Its header is asked first: the system's own message can be
// misleading there.
std::string ModuleProblem(const std::filesystem::path& file, const std::string& message) {
    ElfW(Ehdr) header{};
    if (const int error = ReadHeader(file, header); error != 0) {
        return "cannot be read: " + std::generic_category().message(error);
    }
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        return "not a library: " + message;
    }
    return (IsForThisProcessor(header) ? "" : "built for another architecture: ") + message;
}

// The system's message starts with the file that it is about: the module, or a library that the
// module needs.
std::string LoaderProblem(const std::filesystem::path& file) {
    const char* error = dlerror();
    const std::string message = error == nullptr ? "unknown error" : error;
    const std::string about = file.string() + ": ";
    return message.starts_with(about) ? ModuleProblem(file, message.substr(about.size()))
                                      : "it needs another library: " + message;
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
