#pragma once

#include <cstddef>

#include "platform/PrinterDiscoverAPI/export.h"

// What the USB service of the library PrinterDiscoverAPI offers besides the class
// PrinterUsbDeviceManager. A library that takes its place need not have these: look them up by
// name, and do without.
extern "C" {

// Why the calling thread's last GetCurrentPrinterPorts or StartMonitor of PrinterUsbDeviceManager
// was without a result: terminated UTF-8 in the `size` bytes at `text`, cut where it does not fit.
// 0, and an empty text, when it had one.
PRINTERDISCOVERAPI_API int PrinterUsbProblem(char* text, std::size_t size);

// What is wrong now with the device events that a started monitor reports, in the same way: the
// system's device service is silent, or there are no events for the time being. 0, and an empty
// text, when nothing is.
PRINTERDISCOVERAPI_API int PrinterUsbMonitorProblem(char* text, std::size_t size);

}  // extern "C"
