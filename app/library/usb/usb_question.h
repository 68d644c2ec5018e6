// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/items/usb_printer.h"

namespace App {

// Each question takes a thread, and a vendor's time.
constexpr std::size_t kUsbQuestionsAtATime = 32;

// A vendor's answer about the printers of one identifier.
struct UsbAnswer {
    int result = 0;  // the broker's
    std::vector<UsbPrinter> printers;
};

// Asks the vendor of the hardware identifier for its printers. Safe from any thread. The broker
// reads the identifiers at its first request. If it does not know the identifier, but a vendor
// lists it by now, the broker's list is updated first; this is possible only while no other request
// runs, and is skipped if another request takes too long. Throws std::out_of_range if the
// identifier is too short. A program that makes USB requests on several threads must make all of
// them through this function.
UsbAnswer AskUsbVendor(const std::wstring& deviceId);

// Asks for the printers of each identifier, many at once, so that a model that does not answer
// delays no other. Returns the answers in the order of the identifiers. Does not update the
// broker's list.
std::vector<UsbAnswer> AskUsbVendors(const std::vector<std::wstring>& deviceIds);

}  // namespace App
