// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace App {

// The names that a library exports, read from its file's symbol table, because looking up known
// names cannot list them all. Empty for a file that is not a 64-bit ELF library or a PE library.
// The file is untrusted: inconsistent entries are left out.
std::vector<std::string> ExportedNames(std::istream& file);

// Explains why a similar name is not the missing entry point; empty when no name is similar.
std::string NearMiss(const std::string& entryPoint, const std::vector<std::string>& names);

}  // namespace App
