// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

#include "platform/compiler.h"

#if defined(PRINTERADAPTER_BUILDING)
#define PRINTERLISTPROBLEM_API PLATFORM_EXPORT
#else
#define PRINTERLISTPROBLEM_API PLATFORM_IMPORT
#endif

// An optional function of the library PrinterAdapter. A replacement of the library need not have
// it: look it up by name, and work without it if it is missing.
extern "C" {

// Writes the reason why the calling thread's last GetPrinterList failed to list the printers, as
// terminated UTF-8, to the `size` bytes at `text`, truncated if too long. Returns 0 and an empty
// text when it succeeded, and non-zero otherwise.
PRINTERLISTPROBLEM_API int PrinterListProblem(char* text, std::size_t size);

}  // extern "C"
