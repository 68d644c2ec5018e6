#pragma once

#include <cstddef>

#include "platform/PrinterDiscoverAPI/export.h"

// What the Wi-Fi service of the library PrinterDiscoverAPI offers besides the class PrinterWifiAPI.
// A library that takes its place need not have these: look them up by name, and do without.
extern "C" {

enum PrinterWifiProblemKind : int {
    PRINTER_WIFI_DONE = 0,         // no problem: what was asked is known, or done
    PRINTER_WIFI_NO_ADAPTER = 1,   // this host has no Wi-Fi
    PRINTER_WIFI_NOT_RUNNING = 2,  // the system's Wi-Fi service, or the way to it, is not there
    PRINTER_WIFI_FAILED = 3        // anything else
};

// What stood in the way of the calling thread's last operation of PrinterWifiAPI: its kind
// and, in the `size` bytes at `text`, its reason as terminated UTF-8, cut where it does not fit. An
// operation that was done, and a thread without one, has an empty reason.
PRINTERDISCOVERAPI_API int PrinterWifiProblem(char* text, std::size_t size);

}  // extern "C"
