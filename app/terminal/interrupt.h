// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace App {

// Makes the first request to end the program (Ctrl-C, the system's request to terminate, a closed
// terminal) call `notify` on a separate thread; the second ends the process at once. Requests that
// were ignored when the program was started stay ignored.
void NotifyOnInterrupt(void (*notify)());

// Whether the first request has come.
bool IsInterrupted();

// Makes other threads take such requests, not the calling thread. For threads that wait in a read:
// a sanitizer delays a request until the thread that took it makes another call.
void LeaveInterruptsToOthers();

// Ends the process with `status` after a while, in case a library hangs during process exit. Has no
// effect on Windows, which terminates other threads first.
void EndProcessSoon(int status);

// Ends the process with `status` at once: destroys nothing that other threads may still use.
// Flushes standard output, standard error and the log.
[[noreturn]] void EndProcess(int status);

}  // namespace App
