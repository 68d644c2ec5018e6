// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

// Processes and their surroundings, the same way on every system.
namespace Process {

// The running program, and its folder with a separator at its end.
std::string OwnFile();
std::string OwnFolder();

// What the running program has to be started by: the lines of the file that stands beside it, with
// ".launcher" after its name. None if there is no such file.
std::vector<std::string> OwnLauncher();

void SetEnvironment(const std::string& name, const std::string& value);

// Runs the program of that name in the running program's folder and waits for it. Its exit status;
// anything but 0 to 255 when it did not end by itself: kNotStarted, kHung when it took longer than
// `seconds` and had to be ended, else what the system says of a crash.
constexpr int kNotStarted = -1;
constexpr int kHung = -2;
int Run(const std::string& program, const std::vector<std::string>& arguments, int seconds = 60);

// As above, of a program by its path or, on Linux, by a name that the system looks up.
int RunCommand(const std::vector<std::string>& words, int seconds);

// Whether a process may hang at its end through no fault of its own. Wine ends the other threads
// wherever they are, also inside a lock of its own library, which the last thread then waits for
// forever. It happens when threads contend for memory, about once in a hundred times.
bool MayHangAtItsEnd();

// The name of a file that does not exist, for this process alone.
std::string FreshFile(const std::string& purpose);

// The lines of a text file; none when there is no such file.
std::vector<std::string> LinesOf(const std::string& path);

}  // namespace Process
