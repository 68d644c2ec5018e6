#pragma once

// The printers on USB that a bridge on this host makes reachable by IPP, such as ipp-usb.

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

// "60000-65535", or a single port; the bridges' usual range for anything else.
PortRange PortRangeFrom(const std::string& text);

// The ports behind which bridges may be. A pass phrase goes to what answers there, so only the
// programs of the system and those of `user` count.
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

// The one of the bridges' printers that a record of a printer on USB describes. `other` is what the
// same printer may be called where none has its serial number.
BridgeSearch ChooseBridged(const std::vector<BridgedPrinter>& printers,
                           const VendorSdk::DeviceInfo& record,
                           const OtherSerialNumber& other = {});

// Whether what answers where the printer was reached is still the printer: a bridge may give the
// port to another one that is plugged in. One that tells neither serial number nor UUID is taken
// for any that does not either.
bool IsStillThere(const Printer& bridged, const PrinterAttributes& answer);

// Asks what is behind the bridges and chooses. Comes back by `deadline`.
BridgeSearch FindBridged(const VendorSdk::DeviceInfo& record, Clock::time_point deadline);

}  // namespace Driverless
