#pragma once

#include <cstddef>

#include "platform/compiler.h"

#if defined(PRINTERADAPTER_BUILDING)
#define PRINTERLISTPROBLEM_API PLATFORM_EXPORT
#else
#define PRINTERLISTPROBLEM_API PLATFORM_IMPORT
#endif

// What the library PrinterAdapter offers besides its interfaces. A library that takes its place
// need not have this: look it up by name, and do without.
extern "C" {

// Why the calling thread's last GetPrinterList could not tell which printers there are: terminated
// UTF-8 in the `size` bytes at `text`, cut where it does not fit. 0, and an empty text, when it
// could.
PRINTERLISTPROBLEM_API int PrinterListProblem(char* text, std::size_t size);

}  // extern "C"
