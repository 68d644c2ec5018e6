// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "DeviceDiscover/DeviceDiscover.h"
#include "app/items/printer.h"
#include "app/terminal/table.h"

namespace App {

// A USB printer that is installed on this computer, plugged in or not.
struct InstalledPrinter {
    explicit InstalledPrinter(const PrinterDeviceDiscoverSdk::DeviceUsbInfo& device);

    std::string serialNumber;
    std::string model;
    std::optional<bool> isOnNetwork;  // none: not known without a serial number
};

// A printer that is plugged in, as its vendor reports it. Its address is its place on USB.
struct UsbPrinter : Printer {
    using Printer::Printer;
};

// A printer that was plugged in during a watch. The same printer may be plugged in again.
struct Arrival {
    static constexpr const char* kOne = "arrival";
    static constexpr const char* kMany = "arrivals";

    UsbPrinter printer;
    std::chrono::system_clock::time_point time;

    static std::optional<std::string> Key() { return std::nullopt; }
    bool operator==(const Arrival&) const { return false; }
};

using ArrivalList = ItemList<Arrival>;

// The cells of a row, safe for a terminal; "-" if not known.
using InstalledPrinterRow = std::array<std::string, 3>;
InstalledPrinterRow RowOf(const InstalledPrinter& printer);
Table TableOf(const std::vector<InstalledPrinter>& printers);

using UsbPrinterRow = std::array<std::string, 4>;
UsbPrinterRow RowOf(const UsbPrinter& printer);
Table TableOf(const std::vector<UsbPrinter>& printers);

using ArrivalRow = std::array<std::string, 5>;
ArrivalRow RowOf(const Arrival& arrival);
Table TableOf(const std::vector<Arrival>& arrivals);

}  // namespace App
