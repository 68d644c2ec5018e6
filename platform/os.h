// SPDX-License-Identifier: Apache-2.0

#pragma once

// The two operating-system types of the interface. Windows has them; on other systems they are
// declared here under the same names.

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

// A loaded module: the handle from dlopen, for dlsym and dlclose.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};

#endif
