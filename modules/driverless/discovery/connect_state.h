#pragma once

#include "modules/driverless/printer/printer.h"

namespace Driverless {

// Whether what answered with the attributes may be the printer. Addresses are given to other
// printers, so that an answer alone proves little.
bool IsSamePrinter(const Printer& printer, const PrinterAttributes& attributes);

bool HasAddress(const Printer& printer);

// Whether the printer answers where it is said to be, as GetDeviceConnectState's result says it.
// Takes no longer than kAnswerPatience.
int ConnectState(const Printer& printer);

// The same of a printer that may be at either place. The first one counts, unless it does not
// answer, or not as that printer.
int ConnectState(const Printer& first, const Printer& second);

}  // namespace Driverless
