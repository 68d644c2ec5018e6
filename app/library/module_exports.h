#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace App {

// The names that a library exports, read from its file's own table: what a vendor really exports is
// not to be learnt by asking for names. Empty for what is no 64-bit ELF library or PE library.
// The file may be anything: what does not fit together is left out.
std::vector<std::string> ExportedNames(std::istream& file);

// What keeps one of the names from being that entry point, which the library lacks; empty when none
// looks like it.
std::string NearMiss(const std::string& entryPoint, const std::vector<std::string>& names);

}  // namespace App
