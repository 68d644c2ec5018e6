// SPDX-License-Identifier: Apache-2.0

#pragma once

// Finds printers on USB behind a bridge on this host, such as ipp-usb, which makes them reachable
// by IPP.

#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "VendorSdk/records.h"
#include "modules/driverless/ipp/ipp_query.h"
#include "modules/driverless/printer/printer.h"
#include "modules/driverless/usb/listening_ports.h"
#include "modules/driverless/usb/usb_other_names.h"

namespace Driverless {

struct PortRange {
    std::uint16_t first = 60000;
    std::uint16_t last = 65535;

    bool operator==(const PortRange&) const = default;
};

// Parses "60000-65535" or a single port; returns the bridges' usual range for any other text.
PortRange PortRangeFrom(const std::string& text);

// The ports that may be bridges. A pass phrase is sent there, so only the programs of root and of
// `user` count.
std::vector<std::uint16_t> BridgePorts(const std::vector<ListeningPort>& listening, PortRange range,
                                       unsigned user);

struct BridgedPrinter {
    Printer printer;
    PrinterAttributes attributes;
};

struct BridgeSearch {
    int result;  // PrinterUSBNetConfigEvent's
    std::optional<BridgedPrinter> found;
};

// Chooses the bridged printer that the record of a printer on USB describes. `other` is the
// printer's other serial number, used if no bridged printer has the first.
BridgeSearch ChooseBridged(const std::vector<BridgedPrinter>& printers,
                           const VendorSdk::DeviceInfo& record,
                           const OtherSerialNumber& other = {});

// Whether the printer that answers at the port is still the same: a bridge may give the port to
// another printer. Two printers without serial number and UUID count as the same.
bool IsStillThere(const Printer& bridged, const PrinterAttributes& answer);

// Queries the bridges and chooses the printer. Returns by `deadline`.
BridgeSearch FindBridged(const VendorSdk::DeviceInfo& record, Clock::time_point deadline);

}  // namespace Driverless
