// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/os.h"

// The modules in the tests' module folder, as the operating system loads them.
namespace ModuleFiles {

// One more reference to the module; null when it cannot be loaded. With `keepMapped` its code stays
// where it is when the last reference goes.
HINSTANCE Load(const std::string& moduleName, bool keepMapped);

// Gives back every reference to the module; how many there were.
int ReleaseAll(const std::string& moduleName);

}  // namespace ModuleFiles
