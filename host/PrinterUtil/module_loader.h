#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/os.h"

// What the vendor manager asks of the operating system.
namespace PrinterUtil {

// How the files of modules end.
extern const std::string_view kModuleSuffix;

// Loads the module at that absolute path and adds one reference. Its dependencies are looked for
// where the module says and in the system's own folders. Null, with the reason, on failure.
HINSTANCE LoadModule(const std::filesystem::path& file, std::string& problem);

// Why a file or folder cannot be trusted with what this process does; empty when only its user and
// the administrator can change it. A link is judged by what it leads to.
std::string WhyOthersMayChange(const std::filesystem::path& path);

// Where `file` leads when it is a link; empty when it is none.
std::filesystem::path LinkTarget(const std::filesystem::path& file);

// The folder that this library was loaded from.
std::filesystem::path LibraryFolder();

}  // namespace PrinterUtil
