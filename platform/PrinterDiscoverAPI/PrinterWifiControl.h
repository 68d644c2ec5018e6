#pragma once

#include <cstddef>
#include <vector>

#include "platform/PrinterDiscoverAPI/PrinterWifiAPI.h"
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

// What stood in the way of the calling thread's last operation of PrinterWifiAPI or visit: its kind
// and, in the `size` bytes at `text`, its reason as terminated UTF-8, cut where it does not fit. An
// operation that was done, and a thread without one, has an empty reason. `text` may be null where
// only the kind is wanted.
PRINTERDISCOVERAPI_API int PrinterWifiProblem(char* text, std::size_t size);

// Appends to `networks` what the system knows already of the networks in range, as
// PrinterWifiAPI::ScanWifiAPBySsid gives them, without a scan: at once, and maybe out of date.
PRINTERDISCOVERAPI_API void PrinterWifiKnownNetworks(
    std::vector<PrinterWifiApiStruct::WlanInfoData>* networks);

// Joins the network of that name, terminated UTF-8, for a visit, as PrinterWifiAPI::ConnectAP does
// without a pass phrase; waits for the outcome up to `seconds`, and remembers the connection that
// the host leaves for it. Not 0: joined. A process makes one visit at a time: another one before
// its end goes on from it.
PRINTERDISCOVERAPI_API int PrinterWifiVisit(const char* network, int seconds);

// Ends the visit: sends the host back to the connection that it left, without waiting until it is
// there. A host that had none, or has gone to another network since, stays where it is.
PRINTERDISCOVERAPI_API void PrinterWifiEndVisit();

// Remembers the connection that the host has now, for PrinterWifiGoBack.
PRINTERDISCOVERAPI_API void PrinterWifiRemember();

// Sends the host back to the connection that was remembered, without waiting until it is there,
// unless it has gone to another network than `network`, UTF-8, which the program has joined since.
// Not 0: the host is on its way, or there. What was joined for one time only can be gone back to
// where it is an open network in range.
PRINTERDISCOVERAPI_API int PrinterWifiGoBack(const char* network);

// For a program that is about to end: breaks off what is being joined, ends the visit, and comes
// back when what was begun is undone, which takes as long as the system's Wi-Fi service does.
PRINTERDISCOVERAPI_API void PrinterWifiBreakOff();

}  // extern "C"
