// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/os.h"

// What a test tells the configuration manager that stands for the system's.
extern "C" {

// Tells whoever is registered that the device interface came or went; returns to how many.
using ScriptedNotify = int (*)(int hasCome, const wchar_t* path);

// The result of registrations from now on.
using ScriptedResult = void (*)(DWORD result);
}
