// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "modules/driverless/printer/printer.h"

namespace Driverless {

// Whether the peer that answered with `attributes` may be the printer. Addresses move to other
// printers, so that an answer alone proves little.
bool IsSamePrinter(const Printer& printer, const PrinterAttributes& attributes);

bool HasAddress(const Printer& printer);

// Asks the printer at its address; returns GetDeviceConnectState's result. Takes at most
// kAnswerPatience.
int ConnectState(const Printer& printer);

// The same of a printer that may be at either place. The first one counts, unless it does not
// answer, or not as that printer.
int ConnectState(const Printer& first, const Printer& second);

}  // namespace Driverless
