// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>

namespace Base {

// Text in the system's own encoding: bytes on Linux, UTF-16 on Windows.
using NativeText = std::filesystem::path::string_type;

// The value of an environment variable that names files, folders or networks.
struct EnvironmentText {
    NativeText text;      // empty when the variable is unset, empty or ignored
    std::string ignored;  // one line for the caller's log; empty when nothing was ignored
};

// Reads an environment variable. The user who starts a program with more rights than his own must
// not choose what it reads, writes or trusts: in such a program a set variable is ignored, and
// `ignored` names it.
EnvironmentText ReadEnvironment(const char* name);

}  // namespace Base
