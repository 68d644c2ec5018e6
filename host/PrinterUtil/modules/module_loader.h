// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/PrinterUtil/modules/trusted_file.h"
#include "platform/os.h"

// The operating-system functions that the vendor manager needs.
namespace PrinterUtil {

// The suffix of module files.
extern const std::string_view kModuleSuffix;

// Loads a module from a file without a problem and adds one reference. Dependencies are searched in
// the module's run path and in the system's folders. Null, with the reason in `problem`, on
// failure.
HINSTANCE LoadModule(const TrustedFile& file, std::string& problem);

// The folder that this library was loaded from.
std::filesystem::path LibraryFolder();

}  // namespace PrinterUtil
