// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"
#include "platform/PrinterDiscoverAPI/export.h"

// Optional functions of the library PrinterDiscoverAPI about its class PrinterWifiAPI. A
// replacement of the library need not have them: look them up by name, and work without them if
// they are missing.
extern "C" {

enum PrinterWifiProblemKind : int {
    PRINTER_WIFI_DONE = 0,         // no problem: the operation succeeded
    PRINTER_WIFI_NO_ADAPTER = 1,   // this host has no Wi-Fi
    PRINTER_WIFI_NOT_RUNNING = 2,  // the system's Wi-Fi service is missing or cannot be reached
    PRINTER_WIFI_FAILED = 3        // anything else
};

// Returns the problem of the calling thread's last operation of PrinterWifiAPI or last visit: a
// PrinterWifiProblemKind. Writes the reason, as terminated UTF-8, to the `size` bytes at `text`,
// truncated if too long. The reason is empty after success, and on a thread that has called no
// operation. `text` may be null if only the kind is wanted.
PRINTERDISCOVERAPI_API int PrinterWifiProblem(char* text, std::size_t size);

// Appends the networks in range that the system already knows to `networks`, in the form of
// PrinterWifiAPI::ScanWifiAPBySsid. Returns at once, without a scan; the list may be out of date.
PRINTERDISCOVERAPI_API void PrinterWifiKnownNetworks(
    std::vector<PrinterWifiApiStruct::WlanInfoData>* networks);

// Joins `network`, terminated UTF-8, for a visit: joins like PrinterWifiAPI::ConnectAP without a
// pass phrase, waits up to `seconds` for the outcome, and remembers the connection that the host
// leaves. Returns non-zero when the host has joined. A process makes one visit at a time; another
// visit before PrinterWifiEndVisit continues the first.
PRINTERDISCOVERAPI_API int PrinterWifiVisit(const char* network, int seconds);

// Ends the visit: starts the host's return to the connection that it left, without waiting for the
// outcome. The host stays where it is if it had no connection, or has joined another network since.
PRINTERDISCOVERAPI_API void PrinterWifiEndVisit();

// Remembers the host's current connection for PrinterWifiGoBack.
PRINTERDISCOVERAPI_API void PrinterWifiRemember();

// Starts the host's return to the remembered connection, without waiting for the outcome.
// `network`, UTF-8, is the network that the program has joined since; if the host has joined yet
// another one, nothing is done. Returns non-zero when the host is returning or has returned. A
// connection that was not saved can be restored only if it is an open network in range.
PRINTERDISCOVERAPI_API int PrinterWifiGoBack(const char* network);

// For a program that is about to end: cancels a join in progress, ends the visit, and returns when
// all is undone. This takes as long as the system's Wi-Fi service needs.
PRINTERDISCOVERAPI_API void PrinterWifiBreakOff();

}  // extern "C"
