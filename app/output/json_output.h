// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/items/network.h"
#include "app/items/printer.h"
#include "app/items/usb_printer.h"
#include "app/library/host_wifi.h"
#include "app/library/vendor_survey.h"
#include "host/PrinterUtil/vendor_list.h"

namespace App {

// Each function returns one object on one line, without the line's end. The text is ASCII only, so
// that a device's text cannot control a terminal; ill-formed UTF-8 becomes U+FFFD.
std::string ProblemJson(const std::string& problem);
std::string PrinterJson(const Printer& printer);
std::string StateJson(const Printer& printer, int state);
std::string VendorJson(const PrinterUtil::VendorListReport& list, const VendorInfo& vendor,
                       const std::vector<ModuleSurvey>& modules);

std::string NetworkJson(const Network& network);
std::string HostNetworkJson(const HostNetwork& network);
std::string AccessPointJson(const AccessPoint& accessPoint);
// An empty problem is left out.
std::string JoinJson(const std::string& network, bool joined, const std::string& problem);
std::string PingJson(const std::string& address, bool answers);
std::string ConfigureJson(const std::string& network, int result);
// `isAnswer` is false when it is not known whether the printer is there.
std::string CheckJson(const Printer& printer, int result, bool isAnswer);

std::string InstalledPrinterJson(const InstalledPrinter& printer);
std::string UsbPrinterJson(const UsbPrinter& printer);
std::string ArrivalJson(const Arrival& arrival);
std::string UsbConfigureJson(const UsbPrinter& printer, const std::string& network, int result);

// One event of a set-up: the state of a step, and what is known by then.
struct StepEvent {
    std::string step;
    std::string state;
    std::string network;            // empty: left out
    std::vector<Printer> printers;  // empty: left out; several: any of them may be the printer
    std::optional<int> result;
    std::string problem;  // empty: left out
};
std::string StepJson(const StepEvent& event);

}  // namespace App
