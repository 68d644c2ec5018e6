// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace PrinterUtil {

// A file from which this process may load code, or names of code: only this process's user and the
// administrator can change the file or its path. During the object's lifetime the file stays as it
// was checked, or, on Linux, only these two can change it.
class TrustedFile {
public:
    // Resolves the links of an absolute path once and checks the file and its folders.
    static TrustedFile Open(const std::filesystem::path& file);

    // Why the file cannot be used: it is missing, not a regular file, not readable, or others may
    // change it. Empty when there is no problem.
    const std::string& Problem() const { return problem; }

    // Where the file is, without links; for a file without a problem.
    const std::filesystem::path& Path() const { return path; }

    // Reads at most `most` bytes from the file's start into `bytes`. Returns the reason on failure,
    // and an empty text otherwise.
    std::string Read(std::string& bytes, std::size_t most) const;

private:
    struct Handle;
    TrustedFile(std::filesystem::path place, std::string reason, std::shared_ptr<Handle> opened);

    std::filesystem::path path;
    std::string problem;
    std::shared_ptr<Handle> handle;  // null for a file with a problem
};

}  // namespace PrinterUtil
