// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <deque>
#include <system_error>
#include <utility>
#include <vector>

#include "host/PrinterUtil/modules/trusted_file.h"

namespace PrinterUtil {

namespace fs = std::filesystem;

namespace {

constexpr int kMaxLinks = 40;  // as many as the kernel follows

std::string SystemMessage(int error) {
    return std::generic_category().message(error);
}

class Descriptor {
public:
    explicit Descriptor(int opened = -1) : number(opened) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~Descriptor() {
        if (number >= 0) {
            close(number);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number; }
    bool IsOpen() const { return number >= 0; }
    struct stat Status() const {
        struct stat status {};
        fstat(number, &status);
        return status;
    }

private:
    int number;
};

// Whether this is the administrator's group, or the private group of this process's user, which has
// the user's number on systems where each user has a group.
bool IsOwnGroup(gid_t group) {
    return group == 0 || (group == getegid() && group == geteuid());
}

bool IsOwnUser(uid_t user) {
    return user == 0 || user == geteuid();
}

std::string OfAnotherUser(uid_t user) {
    return "it belongs to another user, number " + std::to_string(user);
}

// With an access control list the group's write permission may belong to another user.
bool HasAccessControlList(const Descriptor& file) {
    const std::string name = "/proc/self/fd/" + std::to_string(file.Number());
    return getxattr(name.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

// Other users who may write, for display; empty when there are none.
std::string WhoElseMayWrite(const Descriptor& file) {
    const struct stat status = file.Status();
    if ((status.st_mode & S_IWOTH) != 0) {
        return "anyone may write to it";
    }
    if ((status.st_mode & S_IWGRP) == 0) {
        return {};
    }
    if (HasAccessControlList(file)) {
        return "its access control list lets others write to it";
    }
    return IsOwnGroup(status.st_gid)
               ? std::string()
               : "group number " + std::to_string(status.st_gid) + " may write to it";
}

std::string WhyOthersMayChange(const Descriptor& file) {
    const uid_t owner = file.Status().st_uid;
    const std::string writer = WhoElseMayWrite(file);
    return writer.empty() && !IsOwnUser(owner) ? OfAnotherUser(owner) : writer;
}

// Opens a path name by name. In every folder on the path only this process's user and the
// administrator may replace the next name, so the resulting path keeps naming the same file.
class Walk {
public:
    explicit Walk(const fs::path& path) {
        Follow(path);
        Enter(Descriptor(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC)), "/");
    }

    // Clears `problem` when the file was opened.
    Descriptor OpenFile(std::string& problem) {
        while (reason.empty() && !ahead.empty() && !file.IsOpen()) {
            const std::string name = ahead.front();
            ahead.pop_front();
            Step(name);
        }
        if (reason.empty() && !file.IsOpen()) {
            reason = "not a regular file";
        }
        problem = reason;
        return std::move(file);
    }

    fs::path Path() const { return folders.back().path / fileName; }

private:
    struct Folder {
        Descriptor opened;
        fs::path path;
    };

    // Inserts the names of a path before the remaining names.
    void Follow(const fs::path& path) {
        std::vector<std::string> names;
        for (const fs::path& name : path.relative_path()) {
            if (!name.empty() && name != ".") {
                names.push_back(name.string());
            }
        }
        ahead.insert(ahead.begin(), names.begin(), names.end());
    }

    void Step(const std::string& name) {
        if (name == "..") {
            if (folders.size() > 1) {
                folders.pop_back();
            }
            return;
        }
        if (ahead.empty() && !MayHoldFiles()) {
            return;
        }
        Descriptor entry(
            openat(folders.back().opened.Number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (!entry.IsOpen()) {
            reason = errno == ENOENT ? "there is no such file"
                                     : "cannot be read: " + SystemMessage(errno);
            return;
        }
        const mode_t mode = entry.Status().st_mode;
        if (S_ISLNK(mode)) {
            StepThrough(entry, name);
        } else if (S_ISDIR(mode)) {
            Enter(std::move(entry), folders.back().path / name);
        } else if (!ahead.empty()) {
            reason = SystemMessage(ENOTDIR);
        } else if (S_ISREG(mode)) {
            Open(entry, name);
        } else {
            reason = "not a regular file";
        }
    }

    void Enter(Descriptor&& folder, fs::path path) {
        if (!folder.IsOpen()) {
            reason = SystemMessage(errno);
            return;
        }
        const std::string problem = WhyNotPassed(folder);
        if (!problem.empty()) {
            Refuse(path, problem);
            return;
        }
        folders.push_back({std::move(folder), std::move(path)});
    }

    // On the way, a folder in which each user may replace only his own names is safe. In a user
    // namespace the system's folders belong to an unknown user: the owner of the root folder counts
    // as the administrator.
    std::string WhyNotPassed(const Descriptor& folder) const {
        const struct stat status = folder.Status();
        const bool isOwn = IsOwnUser(status.st_uid) || folders.empty() ||
                           status.st_uid == folders.front().opened.Status().st_uid;
        if (!isOwn) {
            return OfAnotherUser(status.st_uid);
        }
        return (status.st_mode & S_ISVTX) != 0 ? std::string() : WhoElseMayWrite(folder);
    }

    // No other user may put files into the folder of the file itself.
    bool MayHoldFiles() {
        const Folder& folder = folders.back();
        const std::string problem = WhyOthersMayChange(folder.opened);
        if (!problem.empty()) {
            Refuse(folder.path, problem);
        }
        return problem.empty();
    }

    void StepThrough(const Descriptor& link, const std::string& name) {
        const uid_t owner = link.Status().st_uid;
        std::array<char, PATH_MAX> target{};
        const ssize_t length = readlinkat(link.Number(), "", target.data(), target.size() - 1);
        if (++links > kMaxLinks || length < 0) {
            reason = SystemMessage(links > kMaxLinks ? ELOOP : errno);
        } else if (!IsOwnUser(owner)) {
            reason = "refused: the link " + (folders.back().path / name).string() + ": " +
                     OfAnotherUser(owner);
        } else {
            const fs::path path = target.data();
            if (path.is_absolute()) {
                folders.erase(folders.begin() + 1, folders.end());
            }
            Follow(path);
        }
    }

    void Open(const Descriptor& entry, const std::string& name) {
        Descriptor opened(openat(folders.back().opened.Number(), name.c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        const struct stat found = entry.Status();
        if (!opened.IsOpen()) {
            reason = "cannot be read: " + SystemMessage(errno);
        } else if (const std::string problem = WhyOthersMayChange(opened); !problem.empty()) {
            reason = "refused: " + problem;
        } else if (const struct stat now = opened.Status();
                   now.st_dev != found.st_dev || now.st_ino != found.st_ino) {
            reason = "it was replaced meanwhile";
        } else {
            file = std::move(opened);
            fileName = name;
        }
    }

    void Refuse(const fs::path& folder, const std::string& problem) {
        reason = "refused: its folder " + folder.string() + ": " + problem;
    }

    std::vector<Folder> folders;  // from the root to the file
    std::deque<std::string> ahead;
    int links = 0;
    std::string reason;
    Descriptor file;
    std::string fileName;
};

}  // namespace

struct TrustedFile::Handle {
    Descriptor file;
};

TrustedFile::TrustedFile(fs::path place, std::string reason, std::shared_ptr<Handle> opened)
    : path(std::move(place)), problem(std::move(reason)), handle(std::move(opened)) {}

TrustedFile TrustedFile::Open(const fs::path& file) {
    if (!file.is_absolute()) {
        return {{}, "it has no absolute path", nullptr};
    }
    Walk walk(file);
    std::string problem;
    Descriptor opened = walk.OpenFile(problem);
    if (!problem.empty()) {
        return {{}, problem, nullptr};
    }
    return {walk.Path(), {}, std::make_shared<Handle>(Handle{std::move(opened)})};
}

std::string TrustedFile::Read(std::string& bytes, std::size_t most) const {
    bytes.resize(most);
    std::size_t length = 0;
    while (length < most) {
        const ssize_t count = pread(handle->file.Number(), bytes.data() + length, most - length,
                                    static_cast<off_t>(length));
        if (count < 0 && errno != EINTR) {
            bytes.clear();
            return "cannot be read: " + SystemMessage(errno);
        }
        if (count == 0) {
            break;
        }
        length += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return {};
}

}  // namespace PrinterUtil
