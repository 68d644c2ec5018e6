// SPDX-License-Identifier: Apache-2.0

// Stands for the system's header where only names and sizes matter.
#pragma once

struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using FARPROC = long long (*)();
struct _GUID {
    unsigned long Data1;
    unsigned short Data2;
    unsigned short Data3;
    unsigned char Data4[8];
};
using GUID = _GUID;
