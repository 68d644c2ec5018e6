// SPDX-License-Identifier: Apache-2.0

#pragma once

// The few operating-system functions that this project calls. Windows has them; on other systems
// they are implemented over POSIX under the same names. Not installed, because an application may
// use these names itself.

#include "platform/os.h"

#if !defined(_WIN32)

// A symbol of a module. Cast it to its real type before calling it.
using FARPROC = void (*)();

// Returns the address of the symbol `name` that `module` itself defines, or null. A symbol defined
// only by one of the module's dependencies does not count. Null arguments give null. Safe from any
// thread.
FARPROC GetProcAddress(HINSTANCE module, const char* name);

// Releases one reference to `module`, which must be referenced or null. Returns non-zero on
// success, 0 for null or when the system refuses. Safe from any thread.
int FreeLibrary(HINSTANCE module);

// Suspends the calling thread for at least `milliseconds`.
void Sleep(std::uint32_t milliseconds);

#endif

// Keeps the library that contains `address` in memory until the process ends, even when all
// references are released: detached threads may run in it. Returns whether the library stays; true
// also for the program itself. Safe from any thread.
bool KeepLoaded(const void* address);
