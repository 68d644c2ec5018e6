#pragma once

#include <string>
#include <vector>

#include "app/items/usb_printer.h"

namespace App {

// What became of asking for the printers of one identifier.
struct UsbAnswer {
    int result = 0;  // the broker's
    std::vector<UsbPrinter> printers;
};

// Asks the vendor of that hardware identifier for its printers, from any thread. The broker learns
// the identifiers when it is first asked. One that it does not know, but a vendor's list has by
// now, it learns before the answer: that may be done only while no question is under way, and is
// not done where another question takes too long. Throws std::out_of_range where the identifier is
// too short to name a device. Every question about USB of a program that asks on several threads
// must go this way.
UsbAnswer AskUsbVendor(const std::wstring& deviceId);

// Asks for the printers of each of them, many at once: models that do not answer keep no other
// waiting. The answers come in the order of the identifiers; the broker learns none.
std::vector<UsbAnswer> AskUsbVendors(const std::vector<std::wstring>& deviceIds);

}  // namespace App
