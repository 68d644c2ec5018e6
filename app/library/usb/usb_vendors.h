#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/items/usb_printer.h"
#include "app/library/usb/usb_question.h"

namespace App {

// The printers on the host's USB ports by hardware identifier, as the device manager counts them.
using UsbPortMap = std::map<std::wstring, std::pair<int, int>>;

// Throws Problem when no vendor lists a USB identifier. `ports` is only for the advice.
void RequireUsbIdentifiers(const UsbPortMap& ports);

// Throws Problem when no printer on USB could be reached, or no vendor has that entry point. Else
// one line for each vendor that cannot serve it. `ports` is only for the advice.
std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports);

// The vendor that lists the hardware identifier now; nothing when none does.
std::optional<std::string> UsbVendorOf(const std::string& usbId);

// Why the vendor's answer about that identifier names no printer; empty when it names one.
std::string WhyUsbAnswerIsNone(const std::string& usbId, const UsbAnswer& answer);

// A line for each port whose printers its vendor does not report one and all, or that no vendor
// lists. `answers` are those about the ports, in their order; a printer may stand in the answer
// about another port than its own.
std::vector<std::string> UnreportedPorts(const UsbPortMap& ports,
                                         const std::vector<UsbAnswer>& answers);

}  // namespace App
