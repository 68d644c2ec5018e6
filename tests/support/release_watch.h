#pragma once

#include <string>

// Notes each module that the broker gives back to the system, also while the process ends.
namespace ReleaseWatch {

// From now on each release appends a line to the file: the name of the module, as the scripted
// PrinterUtil gave it out.
void Start(const std::string& recordPath);

}  // namespace ReleaseWatch
