// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/compiler.h"

#if defined(EXIT_LOGGER_BUILDING)
#define EXIT_LOGGER_API PLATFORM_EXPORT
#else
#define EXIT_LOGGER_API PLATFORM_IMPORT
#endif

// Makes sure that the library is loaded, whose destructor logs.
EXIT_LOGGER_API void LogAtExit();
