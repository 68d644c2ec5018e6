// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace App {

// What ReportCrashes needs of each system.

// Calls ReportEnd when the program crashes.
void CatchCrashes();

// Calls `handler` where the process is being ended by what std::atexit does not see: by
// std::quick_exit on Linux; on Windows by ExitProcess, with which the exit() of every C run-time
// library ends. Not after WriteEnd.
void CatchOtherExits(void (*handler)());

// Writes the line to standard error and to the log, without memory and without waiting long. Only
// the first call of the process does, and returns true.
bool WriteEnd(std::string_view text);

// WriteEnd for an end that makes the status one of failure. `what` is followed by the vendors'
// calls; with --json the line also goes to standard output.
void ReportEnd(const char* what);

// Whether this is the process that CatchCrashes was called in, not a copy of it.
bool IsOwnProcess();

}  // namespace App
