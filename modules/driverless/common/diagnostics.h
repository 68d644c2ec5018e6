// SPDX-License-Identifier: Apache-2.0

#pragma once

// The module's own diagnostics: one line for each event, "driverless: ...". Problems go to standard
// error. If the environment variable DRIVERLESS_LOG names a file, problems and details are appended
// to the file instead; a file that cannot be opened is reported once on standard error. The module
// does not wait for the reader of a FIFO, and a closed FIFO does not end the process.

#include <chrono>
#include <string>

namespace Driverless {

// The value of an environment variable that configures the module; empty when it is unset, or
// ignored because this process has more rights than its user, which is reported once for each
// variable.
std::string ReadSetting(const char* name);

// The same for a number of seconds from 1 to `longest`; `normal` for any other value.
std::chrono::seconds ReadSeconds(const char* name, long normal, long longest);

// Reports why the module cannot do what it was asked to.
void ReportProblem(const std::string& message);

// Reports a detail of what the module did.
void ReportDetail(const std::string& message);

}  // namespace Driverless
