// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "app/program/log_file.h"

namespace App {

std::string PrepareLogFile(const std::string& file) {
    struct stat status {};
    // A full log file is renamed, so only a regular file can be the log.
    if (stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        return "not a regular file";
    }
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    constexpr mode_t ownFile = 0600;
    const int opened = open(file.c_str(), flags, ownFile);
    if (opened < 0) {
        return std::strerror(errno);
    }
    close(opened);
    return {};
}

}  // namespace App
