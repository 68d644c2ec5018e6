#pragma once

// The few operating-system names that the broker uses. On Windows they are the system's own;
// elsewhere the same names stand over POSIX.

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#else

#include <cstdint>

// A loaded module: what dlopen returned.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;

// A symbol of a module, to be cast to its own type before it is called.
using FARPROC = void (*)();

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};

// The address of the symbol `name` that `module` itself defines, or null. A symbol that only one of
// the module's dependencies defines does not count. Null arguments give null. Safe from any thread.
FARPROC GetProcAddress(HINSTANCE module, const char* name);

// Gives back one reference to `module`, which must hold one or be null. Returns non-zero on
// success, 0 for null or when the system refuses. Safe from any thread.
int FreeLibrary(HINSTANCE module);

// Suspends the calling thread for at least `milliseconds`.
void Sleep(std::uint32_t milliseconds);

#endif
