// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace App {

// From now on an end of the program that is none of its own is told on standard error and in the
// log, with the vendors that are being called: a crash, an abort, an exception that nobody catches,
// and exit() by somebody else, after which the status is kCouldNotRun. Then the program ends as it
// would have. What cannot be seen is _exit() and its like, TerminateProcess, __fastfail, and
// the signal SIGKILL.
void ReportCrashes();

// The same when the calling thread runs out of stack or, on Windows, calls ExitProcess; for the
// other threads of the program. Vendors' threads that the library starts are seen to.
void ReportCrashesOfThisThread();

// From now on such an end is told on standard output too, as the object that --json has for a
// problem, unless something else is being written there.
void ReportCrashesInJson();

// What comes is the program's own end.
void EndIsOwn();

}  // namespace App
