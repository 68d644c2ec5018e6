#pragma once

#include "printer.h"

namespace Driverless {

bool HasAddress(const Printer& printer);

// Whether the printer answers where it is said to be, as GetDeviceConnectState's result says it.
// Takes no longer than kAnswerPatience.
int ConnectState(const Printer& printer);

}  // namespace Driverless
