#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "host/LogHelper/log_system.h"

namespace LogHelper {

namespace {

constexpr mode_t kOwnFolder = 0700;
constexpr mode_t kOwnFile = 0600;

[[noreturn]] void ThrowSystemError(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

void MakeFolder(const std::filesystem::path& folder) {
    if (folder.empty() || mkdir(folder.c_str(), kOwnFolder) == 0 || errno == EEXIST) {
        return;
    }
    if (errno != ENOENT || folder == folder.parent_path()) {
        ThrowSystemError(folder);
    }
    MakeFolder(folder.parent_path());
    if (mkdir(folder.c_str(), kOwnFolder) != 0 && errno != EEXIST) {
        ThrowSystemError(folder);
    }
}

}  // namespace

void PrepareFile(const std::filesystem::path& path) {
    MakeFolder(path.parent_path());
    // Without waiting: the path may name a pipe that nobody reads.
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int file = open(path.c_str(), flags, kOwnFile);
    if (file < 0) {
        ThrowSystemError(path);
    }
    close(file);
}

bool IsStillThere(std::FILE* file, const std::filesystem::path& path) {
    struct stat open {};
    struct stat named {};
    return fstat(fileno(file), &open) == 0 && stat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

void WriteToStandardError(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

bool OtherThreadsAreGone() noexcept {
    return false;
}

}  // namespace LogHelper
