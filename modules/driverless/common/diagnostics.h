#pragma once

// The module's own diagnostics: one line an event, "driverless: ...". What keeps the module from
// working goes to standard error; with the environment variable DRIVERLESS_LOG naming a file, that
// and what happens on the way is appended there instead; that the file cannot be opened is said
// once, on standard error. A FIFO's reader is not waited for, and one that is gone does not end the
// process.

#include <chrono>
#include <string>

namespace Driverless {

// The text of an environment variable that sets the module up; empty when it is unset, or ignored
// because this process has more rights than its user, which is reported once a variable.
std::string ReadSetting(const char* name);

// One that is a number of seconds, from 1 to `longest`; `normal` for anything else.
std::chrono::seconds ReadSeconds(const char* name, long normal, long longest);

// Something that keeps the module from doing what it was asked to.
void ReportProblem(const std::string& message);

// Something that helps to understand what the module did.
void ReportDetail(const std::string& message);

}  // namespace Driverless
