#pragma once

#include <filesystem>
#include <string>

// What this process may take code from, or the names of code.
namespace PrinterUtil {

// Why the file cannot be used before it is read: it is missing, no regular file, or others may
// change it. Empty when nothing is wrong. A link is judged by what it leads to, and by the folder
// there.
std::string FileProblem(const std::filesystem::path& file);

// Why nothing in the folder can be used: it is missing, or others may put files into it. Empty when
// nothing is wrong.
std::string FolderProblem(const std::filesystem::path& folder);

}  // namespace PrinterUtil
