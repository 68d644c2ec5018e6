#pragma once

// The few operating-system functions that this project calls. On Windows they are the system's own;
// elsewhere the same names stand over POSIX. Not installed: an application may have such names of
// its own.

#include "platform/os.h"

#if !defined(_WIN32)

// A symbol of a module, to be cast to its own type before it is called.
using FARPROC = void (*)();

// The address of the symbol `name` that `module` itself defines, or null. A symbol that only one of
// the module's dependencies defines does not count. Null arguments give null. Safe from any thread.
FARPROC GetProcAddress(HINSTANCE module, const char* name);

// Gives back one reference to `module`, which must hold one or be null. Returns non-zero on
// success, 0 for null or when the system refuses. Safe from any thread.
int FreeLibrary(HINSTANCE module);

// Suspends the calling thread for at least `milliseconds`.
void Sleep(std::uint32_t milliseconds);

#endif

// Keeps the library that holds `address` in memory until the process ends, however many references
// to it are given back: threads run in it that nobody waits for. Returns whether the library stays;
// true also for the program itself. Safe from any thread.
bool KeepLoaded(const void* address);
