#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/PrinterUtil/modules/trusted_file.h"
#include "platform/os.h"

// What the vendor manager asks of the operating system.
namespace PrinterUtil {

// How the files of modules end.
extern const std::string_view kModuleSuffix;

// Loads a module that has no problem, and adds one reference. Its dependencies are looked for where
// the module says and in the system's own folders. Null, with the reason, on failure.
HINSTANCE LoadModule(const TrustedFile& file, std::string& problem);

// The folder that this library was loaded from.
std::filesystem::path LibraryFolder();

}  // namespace PrinterUtil
