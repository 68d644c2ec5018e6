#pragma once

namespace App {

// From now on the first request to end the program (Ctrl-C, the system's request to terminate, a
// closing terminal) calls `notify` on a thread of its own; the second ends the process at once.
// Requests that the program was started to ignore stay ignored.
void NotifyOnInterrupt(void (*notify)());

// Whether the first request has come.
bool IsInterrupted();

// From now on the calling thread takes no such request; another one does. For threads that wait in
// a read: a sanitizer holds a request back until the thread that took it calls something else.
void LeaveInterruptsToOthers();

// Ends the process with that status in a while, should a library not let it end: it may hang in
// what it does at the end. Where the system ends other threads first, on Windows, it cannot.
void EndProcessSoon(int status);

// Ends the process with that status as it is: nothing is taken down under what is at work on other
// threads. Standard output, standard error and the log are flushed.
[[noreturn]] void EndProcess(int status);

}  // namespace App
