#pragma once

#include <filesystem>
#include <string>

namespace Base {

// Text as the system keeps it: bytes on Linux, UTF-16 on Windows.
using NativeText = std::filesystem::path::string_type;

// What the environment says to a program that asks for files, folders or networks.
struct EnvironmentText {
    NativeText text;      // empty when the variable is unset, empty or ignored
    std::string ignored;  // one line for the reader's log; empty when nothing was ignored
};

// Reads an environment variable. Who starts a program that has more rights than its user must not
// choose what it reads, writes or trusts: such a program ignores a variable that is set, and
// `ignored` names it.
EnvironmentText ReadEnvironment(const char* name);

}  // namespace Base
