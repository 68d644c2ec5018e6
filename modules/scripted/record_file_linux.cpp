// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <unistd.h>

#include "record_file.h"

namespace ScriptedVendor {

bool AppendToFile(const std::string& path, const std::string& text) {
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) {
        return false;
    }
    const ssize_t written = write(file, text.data(), text.size());
    return close(file) == 0 && written == static_cast<ssize_t>(text.size());
}

}  // namespace ScriptedVendor
