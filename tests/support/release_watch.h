// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

// Notes each module that the broker gives back to the system, also while the process ends.
namespace ReleaseWatch {

// From now on each release appends a line to the file: the name of the module, as the scripted
// PrinterUtil gave it out, and what `ask` says just before.
void Start(const std::string& recordPath, int (*ask)());

// Appends a line of the caller's.
void Note(const std::string& line);

}  // namespace ReleaseWatch
