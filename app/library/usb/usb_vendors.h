// SPDX-License-Identifier: Apache-2.0

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

// Throws Problem when no vendor lists a USB identifier. `ports` is used only for the advice.
void RequireUsbIdentifiers(const UsbPortMap& ports);

// Throws Problem when no vendor serves printers on USB, or none has the entry point. Otherwise
// returns one line for each vendor that lacks it. `ports` is used only for the advice.
std::vector<std::string> RequireUsbVendors(const std::string& entryPoint, const UsbPortMap& ports);

// The vendor that now lists the hardware identifier; nothing when none does.
std::optional<std::string> UsbVendorOf(const std::string& usbId);

// Why the vendor's answer contains no printer; empty when it contains one.
std::string WhyUsbAnswerIsNone(const std::string& usbId, const UsbAnswer& answer);

// One line for each port that no vendor lists, or whose vendor reported fewer printers than are
// plugged in. `answers` are in the order of the ports; a printer may appear in the answer about
// another port.
std::vector<std::string> UnreportedPorts(const UsbPortMap& ports,
                                         const std::vector<UsbAnswer>& answers);

}  // namespace App
