#pragma once

// The two operating-system types of the interface. On Windows they are the system's own; elsewhere
// the same names stand over POSIX.

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

// A loaded module: what dlopen returned. dlsym looks a symbol up in it, dlclose gives it back.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};

#endif
