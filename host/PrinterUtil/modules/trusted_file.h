#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace PrinterUtil {

// A file that this process may take code from, or the names of code: only this process's user and
// the administrator can change it, or what its path stands for. While the object lives the file
// stays what it was when it was judged, or, on Linux, only these two can change that.
class TrustedFile {
public:
    // Follows the links of an absolute path once and judges the file and its folders.
    static TrustedFile Open(const std::filesystem::path& file);

    // Why the file cannot be used: it is missing, not a regular file, cannot be read, or others may
    // change it. Empty when nothing is wrong.
    const std::string& Problem() const { return problem; }

    // Where the file is, without links; for a file without a problem.
    const std::filesystem::path& Path() const { return path; }

    // Puts at most `most` bytes from the file's start into `bytes`; the reason when that fails.
    std::string Read(std::string& bytes, std::size_t most) const;

private:
    struct Handle;
    TrustedFile(std::filesystem::path place, std::string reason, std::shared_ptr<Handle> opened);

    std::filesystem::path path;
    std::string problem;
    std::shared_ptr<Handle> handle;  // null for a file with a problem
};

}  // namespace PrinterUtil
