// SPDX-License-Identifier: Apache-2.0

#pragma once

// The scripted PrinterAdapter: it knows the printers that the test says.

#include <string>
#include <vector>

#include "DeviceDiscover/printer_sdk.h"

namespace ScriptedAdapter {

// What the list of printers appends from now on.
PRINTERADAPTER_API void Know(std::vector<PrinterSdk::PrinterProperty> printers);

// Whether there is a list; there is one at first.
PRINTERADAPTER_API void OfferList(bool offered);

// The operations of the adapter and of its list that were called, in order; with the list's, how
// many printers were in it already.
PRINTERADAPTER_API std::vector<std::string> Calls();

}  // namespace ScriptedAdapter
