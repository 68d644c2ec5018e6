// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

#include "platform/PrinterDiscoverAPI/export.h"

// Optional functions of the library PrinterDiscoverAPI about its class PrinterUsbDeviceManager. A
// replacement of the library need not have them: look them up by name, and work without them if
// they are missing.
extern "C" {

// Writes the reason why the calling thread's last GetCurrentPrinterPorts or StartMonitor of
// PrinterUsbDeviceManager failed, as terminated UTF-8, to the `size` bytes at `text`, truncated if
// too long. Returns 0 and an empty text when it succeeded, and non-zero otherwise.
PRINTERDISCOVERAPI_API int PrinterUsbProblem(char* text, std::size_t size);

// Writes, in the same way, the current problem of a started monitor: the system's device service
// does not answer, or device events are not available at present. Returns 0 and an empty text when
// there is no problem.
PRINTERDISCOVERAPI_API int PrinterUsbMonitorProblem(char* text, std::size_t size);

}  // extern "C"
